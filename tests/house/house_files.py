"""The C++ files of the project, as the house checks see them."""

import os

SUFFIXES = (".h", ".cpp", ".c", ".cc", ".hpp")


def is_foreign(folder):
    """Build results and what tools keep for themselves."""
    return folder.startswith(("build", ".")) or folder in ("demo", "node_modules")


def cpp_files(root):
    """Paths from the root, in a stable order."""
    found = []
    for folder, folders, files in os.walk(root):
        folders[:] = sorted(name for name in folders if not is_foreign(name))
        for name in sorted(files):
            if name.endswith(SUFFIXES):
                found.append(os.path.relpath(os.path.join(folder, name), root))
    return found
