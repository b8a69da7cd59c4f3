"""The benchmark and its validation file, as a user sees them."""

import os
import re
import unittest

from installed_program import InstalledProgram
from kelvara_program import ProgramTest
from terminal_session import ON_WINDOWS

# The path of the validator's file is an answer; this is where it is asked for.
PROMPT = "Benchmark Validator\n\nEnter Path of Validation File:\n"


class ValidationFile(ProgramTest):
    def compute(self, *arguments):
        """Computes pi. Returns (output, name of the validation file)."""
        code, output = self.run_program("custom", "pi", "-o", self.folder, *arguments, cwd=self.folder)
        self.assertEqual(code, 0, output)
        names = [name for name in os.listdir(self.folder) if re.fullmatch(r"Pi - \d{8}-\d{6}\.txt", name)]
        self.assertEqual(len(names), 1, names)
        return output, names[0]

    def validate(self, path):
        answer = os.path.join(self.folder, "answer")
        with open(answer, "w", encoding="utf-8") as file:
            file.write(path + "\n")
        with open(answer, encoding="utf-8") as file:
            code, output = self.run_program("validate", stdin=file, cwd=self.folder)
        self.assertEqual(code, 0)
        return output[output.index(PROMPT) + len(PROMPT):]

    def read(self, name):
        with open(os.path.join(self.folder, name), "rb") as file:
            return file.read()

    def write(self, name, content):
        with open(os.path.join(self.folder, name), "wb") as file:
            file.write(content)

    def test_of_a_computation_passes(self):
        output, name = self.compute("-dec:12345")
        self.assertIn("\nSpot Check: Good through 10,000\n\n", output)
        self.assertIn(f"\nValidation File: {name}\n", output)
        content = self.read(name)
        for line in ("Constant:              Pi", "Algorithm:             Chudnovsky Formula",
                     "Decimal Digits:        12,345", "Hexadecimal Digits:    10,253",
                     "User:                  Username.txt not found.",
                     "Spot Check:                Good through 10,000",
                     "Timer Sanity Check:        Unable to Validate", "Is Debugger Present:       No",
                     "Is Contiguous:             Yes", "ECC Recovered Errors:      0"):
            self.assertIn(f"\r\n{line}\r\n".encode(), content)
        for line in content.decode("utf-8-sig").split("\r\n"):
            self.assertNotIn("\n", line)
        seconds = re.search(rb"Total Computation Time:    (\S+ seconds)", content)[1].decode()
        wall = re.search(rb"Start-to-End Wall Time:    (\S+ seconds)", content)[1].decode()
        expected = ("File Format: UTF-8\n\nValidation Format 1.3\n\nValidation Passed!\n"
                    f"Computation Time:   {seconds}\nTotal Time:         {wall}\n")
        # With and without the extension.
        self.assertTrue(self.validate(name).startswith(expected), self.validate(name))
        self.assertTrue(self.validate(name[:-4]).startswith(expected))

    def test_that_was_edited_fails(self):
        _, name = self.compute("-dec:1000", "-hex:0")
        content = self.read(name)
        self.assertIn(b"Hexadecimal Digits:    Disabled\r\n", content)
        self.assertNotIn(b"Hex Counts", content)
        time = content.index(b"Total Computation Time:    ") + 27
        self.write("edited.txt", content[:time] + b"9" + content[time + 1:])
        self.assertIn("\nValidation Failed: Invalid Hash\n", self.validate("edited"))
        self.write("newer.txt", content.replace(b"1.3\r\n", b"1.4\r\n", 1))
        self.assertIn("\nThis validation file version is too new.\nPlease use a newer version of Kelvara.\n",
                      self.validate("newer"))
        self.write("cut.txt", content[:content.index(b"Checksum0")])
        self.assertIn("\nValidation Failed - Invalid File\n", self.validate("cut"))

    def test_that_is_missing_is_reported(self):
        self.assertIn("\nUnable to open validation file: missing.txt\nError Code 2: Path does not exist.\n",
                      self.validate("missing"))

    @unittest.skipIf(ON_WINDOWS, "a process cannot stand in a folder that is gone")
    def test_where_nothing_can_be_written(self):
        locked = os.path.join(self.folder, "locked")
        os.mkdir(locked)
        if os.geteuid() == 0:
            # Nothing is forbidden to this user, but nobody can write into a folder that is gone.
            code, output = self.run_in_removed_folder(locked)
        else:
            os.chmod(locked, 0o500)
            code, output = self.run_program("custom", "pi", "-dec:1000", "-o", self.folder, cwd=locked)
        self.assertEqual(code, 0)
        self.assertIn("\nUnable to write validation file: Pi - ", output)
        self.assertIn("2164201989  :  1,000\n", output)
        self.assertTrue(os.path.exists(os.path.join(self.folder, "Pi - Dec - Chudnovsky.txt")))

    def run_in_removed_folder(self, folder):
        return self.run_program("custom", "pi", "-dec:1000", "-o", self.folder, cwd=folder,
                                preexec_fn=lambda: os.rmdir(folder))

    def test_the_end_of_input_ends_the_validator(self):
        code, output = self.run_program("validate")
        self.assertEqual(code, 1)
        self.assertIn("There is no more input: the program ends here.", output)


class Installed(InstalledProgram):
    def test_a_benchmark_succeeds_when_its_digits_agree(self):
        self.install("Digits/Pi.txt", "1,000 | 2164201989\n1,000,000 | 5779458151\n")
        code, output = self.run_installed("bench", "-TD", "1M:1")
        self.assertEqual(code, 0)
        self.assertIn("\nDecimal Digits:       1,048,576\n", output)
        self.assertIn("\nMulti-Threading:      None (No Multi-threading)  ->  1 / ", output)
        self.assertIn("\nSpot Check: Good through 1,000,000\n"
                      "Benchmark Successful. The digits appear to be OK.\n\n", output)
        self.assertIn(b"Spot Check:                Good through 1,000,000\r\n", self.validation_text())

    def test_a_benchmark_with_other_digits_does_not(self):
        self.install("Digits/Pi.txt", "1,000 | 2164201989\n10,000 | 5256375679\n")
        code, output = self.run_installed("bench", "1M")
        self.assertEqual(code, 0)
        self.assertIn("\nSpot Check: Mismatch at 10,000\n\n", output)
        self.assertNotIn("Benchmark Successful", output)
        self.assertIn(b"Spot Check:                Mismatch at 10,000\r\n", self.validation_text())

    def test_without_reference_digits(self):
        _, output = self.run_installed("custom", "pi", "-dec:1000")
        self.assertIn("\nSpot Check: Unavailable - Digit file not found.\n\n", output)
        self.assertIn(b"Spot Check:                Not Available\r\n", self.validation_text())

    def test_the_user_has_a_name(self):
        self.install("Username.txt", "Username: Somebody\n")
        self.run_installed("custom", "pi", "-dec:1000")
        self.assertIn(b"\r\nUser:                  Somebody\r\n", self.validation_text())

    def test_another_executable_does_not_accept_the_file(self):
        self.run_installed("custom", "pi", "-dec:1000")
        self.assertIn("Validation Passed!", self.validate(self.validation_file()))
        # The same program with one byte more at its end.
        with open(self.program, "ab") as file:
            file.write(b"\0")
        self.assertIn("Validation Failed: Invalid Hash", self.validate(self.validation_file()))

    def test_nor_does_one_whose_texts_were_changed(self):
        self.run_installed("custom", "pi", "-dec:1000")
        original = self.validation_file()
        with open(self.program, "rb") as file:
            content = file.read()
        patched = content.replace(b"Benchmark Validator\0", b"Benchmark validator\0")
        self.assertNotEqual(patched, content)
        with open(self.program, "wb") as file:
            file.write(patched)
        self.assertIn("Validation Failed: Invalid Hash", self.run_patched_validator(original))
        # What it writes itself it takes for good, and the published program does not.
        os.rename(original, os.path.join(self.folder, "original.txt"))
        self.run_installed("custom", "pi", "-dec:1000")
        self.assertIn("Validation Passed!", self.run_patched_validator(self.validation_file()))
        with open(self.program, "wb") as file:
            file.write(content)
        self.assertIn("Validation Failed: Invalid Hash", self.validate(self.validation_file()))
        self.assertIn("Validation Passed!", self.validate(os.path.join(self.folder, "original.txt")))

    def run_patched_validator(self, path):
        output = self.run_validator(path)
        self.assertIn("\nBenchmark validator\n", output)
        return output


if __name__ == "__main__":
    unittest.main(verbosity=1)
