"""The source checks find what they are for: check_scripts_test.py TOOLS_FOLDER"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

TOOLS = pathlib.Path(sys.argv.pop())


class CheckScripts(unittest.TestCase):
    def run_check(self, name, files):
        with tempfile.TemporaryDirectory() as folder:
            for path, content in files.items():
                file = pathlib.Path(folder, path)
                file.parent.mkdir(parents=True, exist_ok=True)
                file.write_text(content, encoding="utf-8")
            result = subprocess.run([sys.executable, "-B", TOOLS / name, folder], capture_output=True, text=True)
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

    def test_seam(self):
        for line in [
            "#ifdef _WIN32",
            "#include <windows.h>",
            "#include <unistd.h>",
            "#include <sys/mman.h>",
            "#  include <sys/stat.h>",
            "#if defined(__linux__)",
            "#include <pthread.h>",
        ]:
            with self.subTest(line=line):
                self.assertEqual(self.run_check("check-seam.py", {"console/a.cpp": line + "\n"})[0], 1)
                self.assertEqual(self.run_check("check-seam.py", {"platform/a.cpp": line + "\n"})[0], 1)
                inside = {"platform/os/linux/a.cpp": line + "\n"}
                self.assertEqual(self.run_check("check-seam.py", inside), (0, ""))
        for line in ["#include <thread>", "int sys = 0;  // systems", "#include <immintrin.h>"]:
            with self.subTest(line=line):
                self.assertEqual(self.run_check("check-seam.py", {"console/a.cpp": line + "\n"}), (0, ""))


if __name__ == "__main__":
    unittest.main()
