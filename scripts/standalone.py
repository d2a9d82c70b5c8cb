#!/usr/bin/env python3
"""Checks that every source of the program compiles by itself, as it does in the build the run
command and a plain "cmake" make (no unity build), and fails on any error.

    scripts/standalone.py BUILD_FOLDER [--jobs N]

The test command builds the program's libraries as unity builds, in which a source that lacks
an include still compiles when an earlier source of its unity file brought it. Each source of
src/ is therefore compiled once more here on its own, with its unity file's command and
-fsyntax-only (nothing is written).
"""
import argparse
import json
import os
import re
import shlex
import subprocess
import sys
import time
from concurrent.futures import ThreadPoolExecutor

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SOURCES = os.path.join(ROOT, "src") + os.sep
UNITY_INCLUDE = re.compile(r'^#include "([^"]+)"', re.MULTILINE)
# Options that name the unity file, its object or its dependency file.
WITH_VALUE = {"-o", "-c", "-MF", "-MT", "-MQ"}
ALONE = {"-MD", "-MMD"}


def commands(build):
    """The command for each source of src/ by itself, from its unity file's command."""
    with open(os.path.join(build, "compile_commands.json")) as f:
        entries = json.load(f)
    found = {}
    for entry in entries:
        unity = os.path.realpath(entry["file"])
        if "/Unity/unity_" not in unity:
            continue
        with open(unity) as f:
            sources = [os.path.realpath(s) for s in UNITY_INCLUDE.findall(f.read())]
        arguments = entry.get("arguments") or shlex.split(entry["command"])
        if os.path.basename(arguments[0]) == "ccache":
            arguments = arguments[1:]
        kept = [arguments[0]]
        index = 1
        while index < len(arguments):
            argument = arguments[index]
            if argument in WITH_VALUE:
                index += 2
                continue
            if argument not in ALONE and os.path.realpath(argument) != unity:
                kept.append(argument)
            index += 1
        for source in sources:
            if source.startswith(SOURCES) and source.endswith(".cpp"):
                found.setdefault(source, (kept + ["-fsyntax-only", source], entry["directory"]))
    return found


def compile_each(found, jobs, rewrite, name, done, failing):
    """Runs each source's command (rewrite(command) changes it first) on jobs threads, prints
    the output of those that fail and a line of counts; 0 when all compiled, else 1. done and
    failing are the count lines' texts, each with its one %d (and %.0f for the seconds)."""
    def compile_one(source):
        command, folder = found[source]
        run = subprocess.run(rewrite(command), cwd=folder, stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT, text=True)
        return source, run.returncode, run.stdout

    started = time.time()
    failed = []
    with ThreadPoolExecutor(max_workers=jobs) as pool:
        for source, code, output in pool.map(compile_one, sorted(found)):
            if code != 0:
                failed.append((source, output))
    for source, output in failed:
        print(output.rstrip())
    print("%s: " % name + done % (len(found), time.time() - started))
    if failed:
        print("%s: " % name + failing % len(failed) + ": "
              + ", ".join(os.path.relpath(s, ROOT) for s, _ in failed))
        return 1
    return 0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1)
    args = parser.parse_args()

    found = commands(os.path.abspath(args.build))
    if not found:
        print("standalone: the build folder lists no unity files of src/")
        return 1
    return compile_each(found, args.jobs, lambda command: command, "standalone",
                        "%d sources compiled by themselves in %.0f s",
                        "%d sources do not compile by themselves")


if __name__ == "__main__":
    sys.exit(main())
