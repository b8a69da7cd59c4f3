"""The source checks find what they are for: check_scripts_test.py TOOLS_FOLDER"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

TOOLS = pathlib.Path(sys.argv.pop())


class CheckScripts(unittest.TestCase):
    def run_check(self, name, files, *options):
        with tempfile.TemporaryDirectory() as folder:
            for path, content in files.items():
                file = pathlib.Path(folder, path)
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_text(content, encoding="utf-8")
            result = subprocess.run([sys.executable, "-B", TOOLS / name, *options, folder], capture_output=True, text=True)
            return result.returncode, result.stdout

    def includes(self, includer, included):
        return self.run_check("check-includes.py", {included: "", includer: f'#include "{included}"\n'})

    def test_includes_downwards_and_inside(self):
        for includer, included in [
            ("shell/a.cpp", "sessions/b.h"),
            ("sessions/a.cpp", "sessions/b.h"),
            ("digitfiles/a.cpp", "radix/b.h"),
            ("swap/a.cpp", "platform/memory/b.h"),
            ("platform/a.cpp", "platform/os/b.h"),
            ("console/a.cpp", "platform/os/b.h"),
            ("platform/os/linux/a.cpp", "platform/os/b.h"),
        ]:
            with self.subTest(includer=includer, included=included):
                self.assertEqual(self.includes(includer, included), (0, ""))

    def test_includes_upwards(self):
        for includer, included in [
            ("console/a.cpp", "errors/b.h"),
            ("platform/os/a.cpp", "console/b.h"),
            ("platform/os/linux/a.cpp", "platform/b.h"),
            ("platform/a.cpp", "swap/b.h"),
            ("config/a.h", "platform/b.h"),
            ("radix/a.cpp", "digitfiles/b.h"),
            ("stress/a.cpp", "sessions/b.h"),
            ("constants/a.cpp", "shell/b.h"),
        ]:
            with self.subTest(includer=includer, included=included):
                code, output = self.includes(includer, included)
                self.assertEqual(code, 1)
                self.assertIn(f'includes "{included}"', output)

    def test_includes_unknown(self):
        self.assertEqual(self.run_check("check-includes.py", {"shell/a.cpp": '#include "b.h"\n'})[0], 1)
        self.assertEqual(self.run_check("check-includes.py", {"shell/a.cpp": '#include "shell/b.h"\n'})[0], 1)
        self.assertEqual(self.includes("strange/a.cpp", "console/b.h")[0], 1)
        self.assertEqual(self.run_check("check-includes.py", {"shell/a.cpp": "#include <vector>\n"})[0], 0)

    def test_no_sources(self):
        for name in ("check-includes.py", "check-seam.py"):
            self.assertNotEqual(self.run_check(name, {})[0], 0)

    FORBIDDEN = [
        "#ifdef _WIN32",
        "#if defined(WIN32) || defined(_WIN64)",
        "#define _WIN32_WINNT 0x0A00",
        "#ifdef __MINGW32__",
        "#if _MSC_VER > 1900",
        "#if defined(__linux__)",
        "#ifdef __linux",
        "#ifndef __unix__",
        "#ifdef __GLIBC_PREREQ",
        "#define _GNU_SOURCE",
        "#include <windows.h>",
        "#include <Windows.h>",
        "#include <winsock2.h>",
        "#include <WS2tcpip.h>",
        "#include <psapi.h>",
        "#include <DbgHelp.h>",
        "#include <intrin.h>",
        "#include <io.h>",
        "#include <unistd.h>",
        "#include <sys/mman.h>",
        "#  include <sys/stat.h>",
        '#include "sys/stat.h"',
        "#include <linux/mempolicy.h>",
        "#include <pthread.h>",
        "#include <fcntl.h>",
        "#include <signal.h>",
        "#include <numaif.h>",
        "#include <execinfo.h>",
        "#include <unwind.h>",
    ]
    ALLOWED = [
        "#include <thread>",
        "#include <csignal>",
        "int sys = 0;  // systems",
        "#include <emmintrin.h>",
        "#include <cpuid.h>",
        '#include "platform/os/process.h"',
        "// https://learn.microsoft.com/windows/win32/debug/system-error-codes",
    ]

    def complaints_of_seam(self, lines, folders, *options):
        """The places that the check complains about when every line stands in a file of each folder pattern."""
        files = {pattern.format(number): line + "\n" for number, line in enumerate(lines) for pattern in folders}
        code, output = self.run_check("check-seam.py", files, *options)
        complaints = {path for path in files if f"{path}:1: {files[path].strip()}\n" in output}
        self.assertEqual(output.count("\n"), len(complaints), output)
        self.assertEqual(code, 1 if complaints else 0)
        return complaints

    def expect_seam(self, lines, refused, accepted, *options):
        """Every line is refused in each of the first folder patterns and accepted in each of the second."""
        expected = {pattern.format(number) for number in range(len(lines)) for pattern in refused}
        self.assertEqual(self.complaints_of_seam(lines, refused + accepted, *options), expected)

    def test_seam(self):
        self.expect_seam(
            self.FORBIDDEN,
            ["console/a{}.cpp", "platform/a{}.h", "multiply/kernels/a{}_avx2.cpp", "platform/oslo/linux/a{}.inc"],
            ["platform/os/linux/a{}.cpp", "platform/os/b{}.h"],
        )
        self.expect_seam(self.ALLOWED, [], ["console/a{}.cpp"])

    def test_seam_of_instruction_sets(self):
        lines = ["#include <immintrin.h>", "#include <x86intrin.h>", "# include <smmintrin.h>"]
        self.expect_seam(
            lines,
            ["numbers/a{}.cpp", "numbers/a{}_avx.cpp", "numbers/avx2_a{}.h"],
            ["numbers/a{}_avx2.cpp", "multiply/vst/kernels/a{}.h", "multiply/vectors/a{}.h", "platform/os/a{}.cpp"],
        )
        self.expect_seam(lines, [], ["numbers/a{}_test.cpp"], "--tests")

    def test_seam_of_tests(self):
        self.expect_seam(
            self.FORBIDDEN,
            ["os/a{}_test.cpp", "support/a{}.h", "support/linux_a{}.h", "platform/os/a{}_test.cpp"],
            ["os/linux/a{}_test.cpp", "support/windows/a{}.cpp"],
            "--tests",
        )


if __name__ == "__main__":
    unittest.main()
