#!/usr/bin/env python3
"""Runs clang-tidy (the checks in .clang-tidy) over the project's own sources, in parallel, from
a build folder's compile_commands.json, and fails on any finding.

    scripts/tidy.py BUILD_FOLDER [--jobs N] [--clang-tidy PROGRAM]

The program's sources (src/) are checked as they are compiled: its libraries are unity
builds, and clang-tidy reads each unity file once, Qt's headers with it, rather than once per
source, which is most of its time; findings still name the source file and line. The tests
(tests/, unity builds too) are checked as well with --tests; generated files (moc, resources)
and the benchmarks are not checked.
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
CHECKED = (os.path.join(ROOT, "src") + os.sep, os.path.join(ROOT, "tests") + os.sep)
UNITY_INCLUDE = re.compile(r'^#include "([^"]+)"', re.MULTILINE)
# The tests' precompiled header is GCC's own format; clang reads the header itself instead.
PCH_INCLUDE = re.compile(r" -include \S*cmake_pch\.hxx")
FINDING = re.compile(r"^(/[^:]+):\d+:\d+: (?:warning|error): .*\[([^\],]+)[^\]]*\]$", re.MULTILINE)


def counts(finding):
    """A unity file includes its library's sources by design: that include is no finding."""
    path, check = finding.group(1), finding.group(2)
    return not ("/Unity/unity_" in path and check == "bugprone-suspicious-include")


def unity_sources(path):
    with open(path) as f:
        return UNITY_INCLUDE.findall(f.read())


def checked(build, with_tests):
    """The compile commands to check, by file: unity files of src/ as they are, other sources
    of src/ (and of tests/ when asked) by themselves."""
    with open(os.path.join(build, "compile_commands.json")) as f:
        entries = json.load(f)
    folders = CHECKED if with_tests else CHECKED[:1]
    files = {}
    for entry in entries:
        path = os.path.realpath(entry["file"])
        if "/Unity/unity_" in path:
            sources = [os.path.realpath(s) for s in unity_sources(path)]
            if sources and any(all(s.startswith(folder) for s in sources) for folder in folders):
                entry["command"] = PCH_INCLUDE.sub("", entry["command"])
                files.setdefault(path, entry)
        elif path.startswith(folders) and path.endswith(".cpp"):
            entry["command"] = PCH_INCLUDE.sub("", entry["command"])
            files.setdefault(path, entry)
    return files


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1)
    parser.add_argument("--clang-tidy", default="clang-tidy-14")
    parser.add_argument("--tests", action="store_true", help="check tests/ as well")
    args = parser.parse_args()

    build = os.path.abspath(args.build)
    database = os.path.join(build, "tidy")
    os.makedirs(database, exist_ok=True)
    files = checked(build, args.tests)
    with open(os.path.join(database, "compile_commands.json"), "w") as f:
        json.dump(list(files.values()), f, indent=1)

    def tidy(path):
        # GCC's options that clang does not know are no finding; the compiler's own warnings
        # are the compiler's business (the build has them as errors already).
        command = [args.clang_tidy, "-p", database, "--quiet",
                   "--extra-arg=-Wno-unknown-warning-option", "--extra-arg=-w", path]
        started = time.time()
        run = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                             text=True, cwd=ROOT)
        return path, run.returncode, run.stdout, time.time() - started

    started = time.time()
    findings = {}
    failed = []
    slowest = []
    with ThreadPoolExecutor(max_workers=args.jobs) as pool:
        for path, code, output, seconds in pool.map(tidy, sorted(files)):
            slowest.append((seconds, path))
            found = [m.group(0) for m in FINDING.finditer(output) if counts(m)]
            for line in found:
                findings.setdefault(line, path)
            if found or (code != 0 and not FINDING.search(output)):
                failed.append((path, "\n".join(found) if found else output))
    for path, output in failed:
        print(output.rstrip())
    slowest.sort(reverse=True)
    print("clang-tidy: %d translation units in %.0f s (slowest: %s)" % (
        len(files), time.time() - started,
        ", ".join("%s %.0f s" % (os.path.relpath(p, ROOT), s) for s, p in slowest[:3])))
    if failed:
        print("clang-tidy: findings in %d files" % len(failed))
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
