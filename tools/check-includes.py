#!/usr/bin/env python3
"""Checks that the folders of src/ include each other in one direction only.

    check-includes.py SOURCE_FOLDER

A folder may include itself and every folder of a later line of LAYERS. Folders of one line do not include
each other. Prints each include that breaks this and ends with exit code 1 when there is one.
"""

import pathlib
import re
import sys

LAYERS = [
    ["shell"],
    ["sessions", "stress"],
    ["constants"],
    ["series"],
    ["digitfiles"],
    ["radix"],
    ["numbers"],
    ["multiply"],
    ["swap"],
    ["platform"],
    ["config"],
    ["errors"],
    ["console"],
    ["platform/os"],
]
LAYER_OF = {folder: depth for depth, layer in enumerate(LAYERS) for folder in layer}
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"')


def folder_of(path):
    """The folder of LAYERS that a path below src/ belongs to, or None."""
    parts = pathlib.PurePosixPath(path).parts
    if len(parts) > 2 and parts[:2] == ("platform", "os"):
        return "platform/os"
    return parts[0] if len(parts) > 1 and parts[0] in LAYER_OF else None


def complaint(source_folder, path, included):
    """What is wrong with one include, or None."""
    includer = folder_of(path)
    if includer is None:
        return "stands in no folder that the order knows"
    included_folder = folder_of(included)
    if included_folder is None:
        return f'includes "{included}", which does not begin with a folder of src/'
    if not (source_folder / included).is_file():
        return f'includes "{included}", which does not exist'
    if includer != included_folder and LAYER_OF[included_folder] <= LAYER_OF[includer]:
        return f'includes "{included}": {includer} must not know {included_folder}'
    return None


def main(arguments):
    if len(arguments) != 2:
        sys.exit(__doc__)
    source_folder = pathlib.Path(arguments[1])
    files = sorted(f for f in source_folder.rglob("*") if f.suffix in (".h", ".cpp", ".inc"))
    if not files:
        sys.exit(f"check-includes.py: no sources below {source_folder}")
    complaints = 0
    for file in files:
        path = file.relative_to(source_folder).as_posix()
        for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), start=1):
            match = INCLUDE.match(line)
            problem = complaint(source_folder, path, match.group(1)) if match else None
            if problem:
                print(f"{file}:{number}: {problem}")
                complaints += 1
    sys.exit(1 if complaints else 0)


if __name__ == "__main__":
    main(sys.argv)
