"""The smallest benchmark through the menus: its digits agree with known ones to the last, and its validation file
passes until one byte of it is changed."""

import os
import re
import unittest

from installed_program import InstalledProgram
from terminal_session import Session

SIZE = "25,000,000"


class BenchmarkRun(InstalledProgram):
    def setUp(self):
        super().setUp()
        os.chdir(self.results)
        with open(os.path.join(os.environ["KELVARA_TEST_DATA"], "../../Digits/Pi.txt"), encoding="utf-8") as file:
            self.install("Digits/Pi.txt", file.read())

    def tearDown(self):
        os.chdir("/")
        super().tearDown()

    def run_benchmark(self):
        """What the screen shows of the smallest size."""
        with Session() as session:
            session.answer("option: ", "0")
            session.wait_for("\nBenchmark Pi:\n")
            session.wait_for("option: ")
            if "Select a Benchmark Type:" in session.text():
                session.type("1\n")
                session.wait_for("option: ")
            self.assertRegex(session.text(), r"\n  0 {13}25,000,000 {16}[0-9,]+ \( *[0-9.]+ [KMG]iB\)\n")
            session.type("0\n")
            self.assertEqual(session.end(500), 0, session.text())
            return session.text()

    def run_validator(self, path):
        """The validator from the menu of advanced options."""
        with Session() as session:
            session.answer("option: ", "6")
            session.wait_for("\nAdvanced Options\n")
            session.answer("option: ", "0")
            session.answer("Enter Path of Validation File:\n", path)
            self.assertEqual(session.end(), 0, session.text())
            return session.text()

    @staticmethod
    def value(content, label):
        return re.search(rb"\r\n" + label.encode() + rb" *(.*?)\r\n", content)[1].decode()

    def test_from_the_menu_to_the_validator(self):
        screen = self.run_benchmark()
        self.assertIn(f"\nDecimal Digits:       {SIZE}\n", screen)
        self.assertIn(f"2554677483 6191884322  :  {SIZE}\n", screen)
        self.assertIn(f"\nSpot Check: Good through {SIZE}\n"
                      "Benchmark Successful. The digits appear to be OK.\n", screen)
        path = self.validation_file()
        self.assertIn(f"\nValidation File: {os.path.basename(path)}\n", screen)

        content = self.validation_text()
        self.assertEqual(self.value(content, "Decimal Digits:"), SIZE)
        self.assertEqual(self.value(content, "Spot Check:"), f"Good through {SIZE}")
        self.assertIn(self.value(content, "Timer Sanity Check:"), ("Passed", "Unable to Validate"))
        self.assertEqual(self.value(content, "Is Contiguous:"), "Yes")
        counts = [int(count) for count in self.value(content, "Dec Counts: {").rstrip("}").split(",")]
        self.assertEqual(sum(counts), 25000000)

        answer = self.run_validator(os.path.basename(path))
        self.assertIn("File Format: UTF-8\n\nValidation Format 1.3\n\nValidation Passed!\n"
                      f"Computation Time:   {self.value(content, 'Total Computation Time:')}\n"
                      f"Total Time:         {self.value(content, 'Start-to-End Wall Time:')}\n", answer)
        self.check_edits(content)

    def check_edits(self, content):
        end = content.index(b"\r\n----\r\n") + 2
        places = [content.index(text) for text in (
            b"DO NOT MODIFY", b"Kelvara v", b"Total Computation Time:    ", b"Dec Counts: {", b"Binary Hash: ",
            b"Good through", b"Timer Sanity Check:        ", b"Event Log:", b"Begin Computation")]
        for place in [0, 3, *places, end - 1, end]:
            edited = bytearray(content)
            edited[place] ^= 1
            with open("edited.txt", "wb") as file:
                file.write(edited)
            answer = self.validate("edited")
            self.assertNotIn("Passed", answer)
            # A file whose marker is damaged has no end of its content.
            failure = "Validation Failed - Invalid File" if place >= end else "Validation Failed: Invalid Hash"
            self.assertIn(f"\n{failure}\n", answer, place)
        # From the menu, too, by another time.
        time = content.index(b"Total Computation Time:    ") + 27
        with open("another time.txt", "wb") as file:
            file.write(content[:time] + bytes([content[time] ^ 1]) + content[time + 1:])
        self.assertIn("\nValidation Failed: Invalid Hash\n", self.run_validator("another time"))


if __name__ == "__main__":
    unittest.main(verbosity=1)
