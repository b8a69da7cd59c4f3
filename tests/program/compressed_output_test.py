"""Digits that the real program writes to compressed files, taken apart byte for byte."""

import hashlib
import os
import struct
import unittest

from kelvara_program import ProgramTest

UNLIMITED = 2**64 - 1


def unpack(words, radix, digits):
    """The first digits of 64-bit little-endian words that hold 19 or 16 digits each."""
    width, form = (19, "{:019d}") if radix == 10 else (16, "{:016x}")
    values = struct.unpack(f"<{len(words) // 8}Q", words)
    assert len(values) == -(-digits // width)
    text = "".join(map(form.format, values))
    assert set(text[digits:]) <= {"0"}
    return text[:digits]


class CompressedOutput(ProgramTest):
    def digits_of_file(self, path, number, radix, first_digits, per_file, total, digits):
        """Checks the header to the letter and returns the digits."""
        header = (f"#Compressed Digit File\r\n\r\nFileVersion:\t1.1.0\r\n\r\nBase:\t{radix}\r\n\r\n"
                  f"FirstDigits:\t{first_digits}\r\n\r\nTotalDigits:\t{total:020d}\r\n\r\nBlocksize:\t{per_file}\r\n"
                  f"BlockID:\t{number}\r\n\r\nEndHeader\r\n\r\n\0").encode("ascii")
        with open(path, "rb") as file:
            content = file.read()
        self.assertEqual(content[:len(header)], header)
        return unpack(content[len(header):], radix, digits)

    def digits_of_folder(self, name, radix, first_digits, per_file, total):
        """The digits of all files of a result, which has no others."""
        files = -(-total // per_file)
        folder = os.path.join(self.folder, name)
        self.assertEqual(sorted(os.listdir(folder)), [f"{name} - {k}.qcd" for k in range(files)])
        digits = ""
        for k in range(files):
            count = min(per_file, total - k * per_file)
            digits += self.digits_of_file(os.path.join(folder, f"{name} - {k}.qcd"), k, radix, first_digits, per_file,
                                          total if count < per_file else 0, count)
        return digits

    def text_file(self, name):
        with open(os.path.join(self.folder, name), encoding="ascii") as file:
            return file.read()

    def run_well(self, *arguments):
        code, output = self.run_program("custom", *arguments, "-o", self.folder)
        self.assertEqual(code, 0, output)
        return output

    def test_one_full_file(self):
        output = self.run_well("pi", "-hex:0", "-dec:1000000", "-C:1000000")
        name = "Pi - Dec - Chudnovsky"
        self.assertEqual(os.listdir(self.folder), [name])
        path = os.path.join(self.folder, name, name + " - 0.qcd")
        self.assertIn(f"Digit File: {self.folder}/{name}/{name} - 0.qcd\n", output)
        self.assertIn("Spot Check: Good through 1,000,000", output)
        digits = self.digits_of_folder(name, 10, "3.", 1000000, 1000000)
        with open(path, "rb") as file:
            self.assertEqual(len(file.read().split(b"\0", 1)[1]), 52632 * 8)
        with open(os.environ["KELVARA_TEST_DATA"] + "/constants.csv", encoding="utf-8") as rows:
            expected = next(row.split(",")[4] for row in rows if row.startswith("pi,1000000,"))
        self.assertEqual(hashlib.sha256(("3." + digits).encode()).hexdigest(), expected)

    def test_several_files_of_both_radices(self):
        output = self.run_well("e", "-dec:1300000", "-C:1m")
        self.assertIn(f"Digit Files: 2 in {self.folder}/e - Dec - exp(1)/\n", output)
        self.assertIn(f"Digit Files: 2 in {self.folder}/e - Hex - exp(1)/\n", output)
        self.assertRegex(output, "Spot Check: Good through")
        decimal = self.digits_of_folder("e - Dec - exp(1)", 10, "2.", 1000000, 1300000)
        hexadecimal = self.digits_of_folder("e - Hex - exp(1)", 16, "2.", 1000000, 1079627)
        # The same as text, and once more in one file.
        self.run_well("e", "-dec:1300000")
        self.assertEqual(self.text_file("e - Dec - exp(1).txt"), "2." + decimal)
        self.assertEqual(self.text_file("e - Hex - exp(1).txt"), "2." + hexadecimal)
        output = self.run_well("e", "-dec:1300000", "-C:-1")
        for name, radix, digits in (("e - Dec - exp(1)", 10, decimal), ("e - Hex - exp(1)", 16, hexadecimal)):
            path = f"{self.folder}/{name} - 0.qcd"
            self.assertIn(f"Digit File: {path}\n", output)
            self.assertEqual(self.digits_of_file(path, 0, radix, "2.", UNLIMITED, len(digits), len(digits)), digits)

    def test_what_is_refused_before_the_computation(self):
        # The hexadecimal digits that follow from a million decimal ones are too few.
        self.assert_refused("Too few digits to compress.", "custom", "pi", "-dec:1000000", "-C:1000000")
        self.assert_refused("Too few digits to compress.", "custom", "pi", "-dec:2m", "-C:1m", "-dec:500k")
        name = "Pi - Dec - Chudnovsky"
        arguments = ("custom", "pi", "-dec:1m", "-hex:0", "-o", self.folder)
        with open(os.path.join(self.folder, name), "w", encoding="ascii"):
            pass
        self.assert_refused("Unable to create folder.", *arguments, "-C:1m")
        os.mkdir(os.path.join(self.folder, name + " - 0.qcd"))
        self.assert_refused("A folder has the name of the digit file.", *arguments, "-C:-1")
        os.mkdir(os.path.join(self.folder, name + ".txt"))
        self.assert_refused("A folder has the name of the digit file.", *arguments)


if __name__ == "__main__":
    unittest.main()
