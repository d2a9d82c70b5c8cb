#!/usr/bin/env python3
"""Checks that every source of the program compiles as a Windows compiler sees it, and fails on
any error.

    scripts/windows_check.py BUILD_FOLDER [--jobs N]

Tarnwick is written to build on Windows too, and its Windows branches (#if defined(Q_OS_WIN))
are compiled by no Linux build. Each source of src/ is compiled here with MinGW-w64's g++
(-fsyntax-only: nothing is written) under the same options as in the build, with the Qt headers
of this system and Qt's win32-g++ settings: every Windows branch meets a Windows compiler, its
headers (windows.h, io.h) and its C library, and every POSIX call left outside a branch fails.
Warnings are not looked at (they are the Windows build's own business); errors are.
"""
import argparse
import os
import shutil
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from standalone import commands, compile_each  # noqa: E402

COMPILER = "x86_64-w64-mingw32-g++-posix"
# Options of the Linux build that mean nothing to a Windows object, and the X11 clipboard's
# library, which CMake looks for only on Linux.
DROPPED = {"-fPIC", "-fPIE", "-Werror", "-D_FORTIFY_SOURCE=2", "-DTARNWICK_HAVE_XCB=1"}
# The libraries' headers the sources include, taken from this system. They are linked one by
# one into a folder of their own: the system's whole include folder would also offer its C
# library's headers, where MinGW's must be found.
LIBRARY_HEADERS = ["sqlite3.h", "sodium.h", "sodium", "zip.h", "zipconf.h"]


def library_headers(build):
    folder = os.path.join(build, "windows-check-include")
    os.makedirs(folder, exist_ok=True)
    for name in LIBRARY_HEADERS:
        link = os.path.join(folder, name)
        if not os.path.lexists(link):
            os.symlink(os.path.join("/usr/include", name), link)
    return folder


def windows_command(command, headers):
    result = [COMPILER, "-w", "-isystem", headers]
    for argument in command[1:]:
        if argument in DROPPED:
            continue
        result.append(argument.replace("/mkspecs/linux-g++", "/mkspecs/win32-g++"))
    return result


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1)
    args = parser.parse_args()

    if shutil.which(COMPILER) is None:
        print("windows check: %s is missing (package g++-mingw-w64-x86-64-posix)" % COMPILER)
        return 1
    build = os.path.abspath(args.build)
    found = commands(build)
    if not found:
        print("windows check: the build folder lists no unity files of src/")
        return 1
    headers = library_headers(build)
    return compile_each(found, args.jobs, lambda command: windows_command(command, headers),
                        "windows check", "%d sources compiled as for Windows in %.0f s",
                        "%d sources do not compile for Windows")


if __name__ == "__main__":
    sys.exit(main())
