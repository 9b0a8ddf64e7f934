#!/usr/bin/env python3
"""Checks that every folder includes only folders below it, and that every header is one.

Usage: check_includes.py ROOT        exit status 1 and one line for each fault
       check_includes.py --self-test  proves that each kind of fault is found
"""

import os
import re
import sys
import tempfile

from house_files import cpp_files

# Which folders a folder may include beside itself, from the ground up. Missing on purpose:
# service/control and service/email do not know each other, and a web server knows no stock.
DATA = ["platform", "datastore"]
STOCK = DATA + ["service/control", "service/email", "inventory"]
BUSINESS = STOCK + ["orders", "reports", "documents"]
WEB = BUSINESS + ["web/static", "web/server", "web/framework", "web/accounts", "web/pages"]
SERVICE = WEB + ["service/agent", "service/link", "service/engine"]
MAY_INCLUDE = {
    "platform": [],
    "datastore": ["platform"],
    "service/control": DATA,
    "service/email": DATA,
    "inventory": DATA + ["service/control", "service/email"],
    "orders": STOCK,
    "reports": STOCK + ["orders"],
    "documents": STOCK + ["orders", "reports"],
    "web/static": ["platform"],
    "web/server": DATA + ["service/control", "web/static"],
    "web/framework": BUSINESS + ["web/static", "web/server"],
    "web/accounts": BUSINESS + ["web/static", "web/server", "web/framework"],
    "web/pages": BUSINESS + ["web/static", "web/server", "web/framework", "web/accounts"],
    "service/agent": WEB,
    "service/link": WEB + ["service/agent"],
    "service/engine": WEB + ["service/agent", "service/link"],
    "desktop": SERVICE,
    "app": SERVICE + ["desktop"],
}
# On top of everything.
PROGRAMS = ["bench", "tests/support"]

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def folder_of(path):
    """The folder of the table in which `path` lies; None when there is none."""
    folder = os.path.dirname(path)
    while folder and folder not in MAY_INCLUDE and folder not in PROGRAMS:
        folder = os.path.dirname(folder)
    return folder or None


def allowed_for(path):
    """The folders that the file may include; None when its folder is not in the table."""
    if path.startswith("tests/") and folder_of(path) is None:
        tested = folder_of(path.removeprefix("tests/"))
        if tested is None:
            return None
        return MAY_INCLUDE[tested] + [tested, "tests/support"]
    folder = folder_of(path)
    if folder in PROGRAMS:
        return list(MAY_INCLUDE) + PROGRAMS
    return None if folder is None else MAY_INCLUDE[folder] + [folder]


def is_own_test_header(path, included):
    return path.startswith("tests/") and os.path.dirname(path) == os.path.dirname(included)


def include_fault(path, kind, included, allowed):
    """What is wrong with one include of the file; None when it is right."""
    parts = included.split("/")
    if ".." in parts or "." in parts:
        return f'"{included}" is not a path from the root'
    target = folder_of(included)
    if target is None:
        is_ours = kind == '"' and not is_own_test_header(path, included)
        return f'"{included}" names no folder of the project' if is_ours else None
    return None if target in allowed else f"may not include {target} ({included})"


def header_faults(lines):
    if not lines or not re.match(r"//\s*\S", lines[0]):
        yield 1, "a header begins with a sentence that says what it is for"
    if "#pragma once" not in lines:
        yield 1, "a header has #pragma once"


def faults_of(root, path):
    """(line number, complaint) for each fault of one file."""
    with open(os.path.join(root, path), encoding="utf-8", errors="replace") as file:
        lines = file.read().splitlines()
    if path.endswith((".h", ".hpp")):
        yield from header_faults(lines)
    allowed = allowed_for(path)
    if allowed is None:
        yield 1, "its folder is not in the table of tests/house/check_includes.py"
        return
    for number, line in enumerate(lines, 1):
        match = INCLUDE.match(line)
        fault = match and include_fault(path, match[1], match[2], allowed)
        if fault:
            yield number, fault


def check(root):
    files = cpp_files(root)
    if not files:
        return [f"no C++ file below {root}"]
    return [
        f"{path}:{number}: {fault}" for path in files for number, fault in faults_of(root, path)
    ]


GOOD_HEADER = "// What it is for.\n#pragma once\n"
# File, its text, and a part of the complaint; None where there must be none.
SAMPLES = [
    ("platform/A.h", GOOD_HEADER + "#include <vector>\n", None),
    ("platform/A.cpp", '#include "platform/A.h"\n#include <unicode/uchar.h>\n', None),
    ("platform/Up.cpp", '#include "datastore/B.h"\n', "may not include datastore"),
    ("platform/Angle.cpp", "  #  include <orders/B.h>\n", "may not include orders"),
    ("service/control/A.cpp", '#include "service/email/B.h"\n', "may not include service/email"),
    ("service/email/A.cpp", '#include "service/control/B.h"\n', "may not include service/control"),
    ("web/server/A.cpp", '#include "inventory/B.h"\n', "may not include inventory"),
    ("web/pages/sub/A.cpp", '#include "web/framework/B.h"\n#include "orders/B.h"\n', None),
    ("inventory/A.cpp", '#include "inventory/../orders/B.h"\n', "not a path from the root"),
    ("inventory/B.cpp", '#include "Beside.h"\n', "names no folder"),
    ("inventory/C.cpp", '#include "service/B.h"\n', "names no folder"),
    ("attic/A.cpp", "int a;\n", "not in the table"),
    ("tests/orders/ATest.cpp", '#include "orders/B.h"\n#include "tests/support/B.h"\n', None),
    ("tests/orders/BTest.cpp", '#include "tests/orders/Shared.h"\n', None),
    ("tests/orders/CTest.cpp", '#include "web/pages/B.h"\n', "may not include web/pages"),
    ("tests/support/A.cpp", '#include "web/pages/B.h"\n', None),
    ("orders/Bare.h", "#pragma once\n", "begins with a sentence"),
    ("orders/Twice.h", "// What it is for.\n", "#pragma once"),
    ("build-x/platform/A.cpp", '#include "app/B.h"\n', None),
]


def self_test():
    with tempfile.TemporaryDirectory() as root:
        for path, text, _ in SAMPLES:
            os.makedirs(os.path.dirname(os.path.join(root, path)), exist_ok=True)
            with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                file.write(text)
        found = check(root)
    wrong = []
    for path, _, expected in SAMPLES:
        mine = [line for line in found if line.startswith(path + ":")]
        if expected is None and mine:
            wrong.append(f"{path}: no fault expected, but: {mine}")
        if expected is not None and not (len(mine) == 1 and expected in mine[0]):
            wrong.append(f"{path}: expected '{expected}', but: {mine}")
    return wrong


def main(arguments):
    if len(arguments) != 1:
        sys.exit(__doc__)
    faults = self_test() if arguments[0] == "--self-test" else check(arguments[0])
    print("\n".join(faults) or "no fault found")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
