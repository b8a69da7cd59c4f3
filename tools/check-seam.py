#!/usr/bin/env python3
"""Checks that nothing outside the seam touches an operating system or an instruction set.

    check-seam.py SOURCE_FOLDER
    check-seam.py --tests TEST_FOLDER

What depends on the system stands behind the headers of platform/os; what depends on an instruction set beyond
plain x86-64 stands in kernels: files below a folder "kernels" or "vectors" and files whose names end in an instruction set. Tests may ask
for the system in folders named "linux" and "windows", and for instructions anywhere. Prints each line elsewhere that
asks which system it is compiled for, includes a header of a system or the intrinsics of a processor, or sets a
macro that changes what system headers declare, comments included, and ends with exit code 1 when there is one.
"""

import pathlib
import re
import sys

SYSTEM_MACROS = (
    # _WIN32_WINNT and the like too.
    r"_?_?WIN(?:32|64)\w*|WINVER|WINNT|_WINDOWS|_?_?MINGW\w*|__CYGWIN\w*|_MSC_\w+|_MSVC\w+|WIN32_LEAN_AND_MEAN"
    r"|NOMINMAX|__linux\w*|__gnu_linux__|__unix\w*|__ANDROID\w*|__APPLE__|__MACH__"
    r"|__(?:Free|Net|Open)BSD__|__GLIBC\w*|_GNU_SOURCE|_POSIX_\w*|_XOPEN_SOURCE|_DEFAULT_SOURCE|_LARGEFILE\w*"
)
WINDOWS_HEADERS = (
    r"win\w*|ws2\w*|wincon|psapi|dbghelp|imagehlp|tlhelp32|powrprof|shellapi|shlobj|shlwapi|objbase|combaseapi"
    r"|oleauto|wbem\w+|comdef|ntdef|ntstatus|versionhelpers|memoryapi|processthreadsapi|sysinfoapi|fileapi|io|direct"
    r"|process|conio|share|intrin|tchar|eh|crtdbg"
)
LINUX_HEADERS = (
    r"unistd|pthread|sched|fcntl|dlfcn|termios?|poll|numa\w*|execinfo|ucontext|unwind|link|elf|pty|utmp|dirent"
    r"|mntent|pwd|grp|spawn|signal|semaphore|aio|mqueue|malloc|features|syscall|syslog|glob|fnmatch|wordexp|ftw|error"
    r"|libgen|libudev|getopt|regex|strings|ifaddrs|netdb"
)
# Of headers, Windows reads any mixture of capitals.
SYSTEM = re.compile(
    rf"\b(?:{SYSTEM_MACROS})\b|(?i:\b(?:windows|unistd)\.h\b"
    rf"|#\s*include(?:_next)?\s*[<\"](?:(?:{WINDOWS_HEADERS}|{LINUX_HEADERS})\.h\b"
    rf"|(?:sys|linux|asm|asm-generic|bits|net|netinet|arpa|ddk)[/\\]))"
)
# SSE and SSE2 (xmmintrin.h, emmintrin.h) are what every x86-64 processor has.
INSTRUCTIONS = re.compile(r"#\s*include\s*[<\"](?!xmm|emm)\w+intrin\.h\b")

KERNEL_FOLDERS = {"kernels", "vectors"}
KERNEL_NAME = re.compile(r"_(?:sse2|sse4|sse42|avx2|fma4|avx512|adx|sha)$")
TEST_FOLDERS = {"linux", "windows"}
SUFFIXES = (".h", ".hpp", ".inc", ".c", ".cc", ".cpp")


def forbidden_in(path, in_tests):
    """The patterns that no line of the file at this path, relative to its folder, may hold."""
    folders = set(path.parts[:-1])
    if in_tests:
        return [] if folders & TEST_FOLDERS else [SYSTEM]
    if path.parts[:2] == ("platform", "os"):
        return []
    if folders & KERNEL_FOLDERS or KERNEL_NAME.search(path.stem):
        return [SYSTEM]
    return [SYSTEM, INSTRUCTIONS]


def main(arguments):
    in_tests = arguments[1:2] == ["--tests"]
    if len(arguments) != 2 + in_tests:
        sys.exit(__doc__)
    folder = pathlib.Path(arguments[-1])
    files = sorted(f for f in folder.rglob("*") if f.suffix in SUFFIXES)
    if not files:
        sys.exit(f"check-seam.py: no sources below {folder}")
    complaints = 0
    for file in files:
        patterns = forbidden_in(file.relative_to(folder), in_tests)
        for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), start=1):
            if any(pattern.search(line) for pattern in patterns):
                print(f"{file}:{number}: {line.strip()}")
                complaints += 1
    sys.exit(1 if complaints else 0)


if __name__ == "__main__":
    main(sys.argv)
