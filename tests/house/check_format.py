#!/usr/bin/env python3
"""Checks that every C++ file looks as the project's .clang-format lays it out.

Usage: check_format.py ROOT   exit status 1 and one line for each file that does not; 77 (skipped)
                              without clang-format 14, as other versions break lines elsewhere
"""

import re
import shutil
import subprocess
import sys

from house_files import cpp_files

VERSION = "14"
SKIPPED = 77


def find_formatter():
    for name in (f"clang-format-{VERSION}", "clang-format"):
        program = shutil.which(name)
        if program is None:
            continue
        text = subprocess.run([program, "--version"], capture_output=True, text=True).stdout
        if re.search(rf"version {VERSION}\.", text):
            return program
    return None


def badly_formatted(program, root, files):
    command = [program, "--dry-run", "--Werror", "--ferror-limit=1", "--"] + files
    result = subprocess.run(command, cwd=root, capture_output=True, text=True)
    names = set(re.findall(r"^([^:\n]+):\d+:\d+: error:", result.stderr, re.MULTILINE))
    if result.returncode != 0 and not names:
        return [f"clang-format failed: {result.stderr.strip()}"]
    return sorted(names)


def main(arguments):
    if len(arguments) != 1:
        sys.exit(__doc__)
    program = find_formatter()
    if program is None:
        print(f"clang-format {VERSION} is not installed")
        return SKIPPED
    wrong = badly_formatted(program, arguments[0], cpp_files(arguments[0]))
    print("\n".join(f"clang-format -i {name}" for name in wrong) or "all files are formatted")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
