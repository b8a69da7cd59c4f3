#!/usr/bin/env python3
"""Checks that nothing outside src/platform/os touches an operating system.

    check-seam.py SOURCE_FOLDER

Everything that depends on the system stands behind the headers of platform/os. Prints each line elsewhere
that asks which system it is compiled for or includes a system header, comments included, and ends with
exit code 1 when there is one.
"""

import pathlib
import re
import sys

FORBIDDEN = re.compile(
    r"\b(?:_WIN32|_WIN64|WIN32|__MINGW32__|__MINGW64__|_MSC_VER|__linux__|__unix__|__gnu_linux__)\b"
    r"|\bwindows\.h\b|\bunistd\.h\b"
    r"|#\s*include\s*[<\"](?:sys/|linux/|pthread\.h|sched\.h|fcntl\.h|dlfcn\.h|termios\.h|poll\.h|numa)"
)


def main(arguments):
    if len(arguments) != 2:
        sys.exit(__doc__)
    source_folder = pathlib.Path(arguments[1])
    seam = source_folder / "platform" / "os"
    files = sorted(f for f in source_folder.rglob("*") if f.suffix in (".h", ".cpp", ".inc"))
    if not files:
        sys.exit(f"check-seam.py: no sources below {source_folder}")
    complaints = 0
    for file in files:
        if seam in file.parents:
            continue
        for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), start=1):
            if FORBIDDEN.search(line):
                print(f"{file}:{number}: {line.strip()}")
                complaints += 1
    sys.exit(1 if complaints else 0)


if __name__ == "__main__":
    main(sys.argv)
