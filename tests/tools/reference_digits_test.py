"""The spot check's digits are those of the tests' data: reference_digits_test.py SOURCE_ROOT"""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(sys.argv.pop())


class ReferenceDigits(unittest.TestCase):
    def setUp(self):
        self._temporary = tempfile.TemporaryDirectory()
        self.folder = pathlib.Path(self._temporary.name)
        for name in ("constants.csv", "long_digits.csv"):
            (self.folder / "tests/data").mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / "tests/data" / name, self.folder / "tests/data" / name)

    def tearDown(self):
        self._temporary.cleanup()

    def make(self):
        return subprocess.run([sys.executable, "-B", ROOT / "tools/make-reference-digits.py", self.folder],
                              capture_output=True, text=True, check=False)

    def test_are_up_to_date(self):
        self.assertEqual(self.make().returncode, 0)
        made = {path.name: path.read_text(encoding="utf-8") for path in (self.folder / "Digits").iterdir()}
        kept = {path.name: path.read_text(encoding="utf-8") for path in (ROOT / "Digits").iterdir()}
        self.assertEqual(made, kept)

    def test_contradictions_are_refused(self):
        with open(self.folder / "tests/data/long_digits.csv", "a", encoding="utf-8") as table:
            table.write("pi,1000,0000000000,1000,chudnovsky,ramanujan\n")
        result = self.make()
        self.assertEqual(result.returncode, 1)
        self.assertIn("pi: two kinds of digits at 1000", result.stderr)


if __name__ == "__main__":
    unittest.main()
