"""Menus and information screens of the real program: every screen to the letter, every way through them."""

import os
import re
import unittest

import expected_screens
from kelvara_program import ProgramTest
from terminal_session import ON_WINDOWS, Session, without_marks

# A console that folds a line draws its beginning once more.
LONG_ANSWER = "9" * (80 if ON_WINDOWS else 300)
BAD_ANSWERS = ("letters", "-1", "-99999999999999999999999", "8", "99999999999999999999999999", "+3", " 9",
               "0x", "\u20ac", LONG_ANSWER)


class MainMenu(unittest.TestCase):
    def test_to_the_letter(self):
        with Session() as session:
            session.wait_for("option: ")
            session.type("7\n")
            self.assertEqual(session.end(), 0)
            # What is typed is echoed in teal, and white returns behind it.
            expected = "\n" + expected_screens.MAIN_MENU + "7\n<white>\n" + expected_screens.ABOUT
            self.assertTrue(session.shows(expected), session.coloured())

    def test_asks_again_until_the_answer_is_in_range(self):
        bad = [answer for answer in BAD_ANSWERS if re.match("-|[89]", answer)]
        with Session() as session:
            for answer in bad:
                session.answer("option: ", answer)
            session.answer("option: ", "7")
            self.assertEqual(session.end(), 0)
            self.assertEqual(session.text().count("option: "), len(bad) + 1)
            # The menu is not shown again, only its prompt.
            self.assertEqual(session.text().count("Enter your choice:"), 1)
            self.assertIn("Kelvara - Euler's Constant to the eXtReMe", session.text())

    def test_answers_without_digits_are_zero(self):
        for answer in ("", "letters", "-", "\u20ac", " 9", "+3", "0x"):
            with Session() as session:
                session.answer("option: ", answer)
                session.wait_for("\nBenchmark Pi:\n")
                session.wait_for("option: ")
                session.type_end_of_input()
                self.assertEqual(session.end(), 1)

    def test_only_the_leading_digits_count(self):
        with Session() as session:
            session.answer("option: ", "7 of 9")
            self.assertEqual(session.end(), 0)
            self.assertIn("\nDisclaimer:\n", session.text())

    def test_every_entry(self):
        answers = {
            "2": "The I/O performance analysis is not available in this build yet.",
            "6": "Advanced Options\n\n  0         Benchmark Validator\n",
            "7": "\nKelvara - Euler's Constant to the eXtReMe\n",
        }
        for choice, text in answers.items():
            with Session() as session:
                session.answer("option: ", choice)
                if choice == "6":
                    session.answer("option: ", "4")
                self.assertEqual(session.end(), 0)
                self.assertIn(text, session.text())

    def test_the_stress_tester(self):
        with Session() as session:
            session.answer("option: ", "1")
            session.wait_for("\nComponent Stress Tester\n")
            session.wait_for("option: ")
            session.type_end_of_input()
            self.assertEqual(session.end(), 1)

    def test_the_custom_compute_menu(self):
        with Session() as session:
            session.answer("option: ", "3")
            session.wait_for("\nCustom Compute a Constant\n")
            session.wait_for("option: ")
            session.type_end_of_input()
            self.assertEqual(session.end(), 1)

    def test_the_end_of_input_ends_the_program(self):
        with Session() as session:
            session.wait_for("option: ")
            session.type_end_of_input()
            self.assertEqual(session.end(), 1)
            self.assertTrue(session.shows("<R>There is no more input: the program ends here.\n<white>"),
                            session.coloured())

    def test_without_colours_the_text_is_the_same(self):
        with Session("colors:0") as session:
            session.answer("option: ", "7")
            self.assertEqual(session.end(), 0)
            self.assertEqual(session.coloured(), session.text())
            self.assertIn(without_marks(expected_screens.MAIN_MENU), session.text())

    @unittest.skipIf(ON_WINDOWS, "a console draws the lines that it folds anew")
    def test_in_a_narrow_window(self):
        with Session(columns=20, rows=5) as session:
            session.answer("option: ", "7")
            self.assertEqual(session.end(), 0)
            self.assertIn("\nDisclaimer:\n", session.text())


class AdvancedOptions(unittest.TestCase):
    def open(self, session, answer):
        session.answer("option: ", "6")
        session.answer("option: ", answer)

    def test_to_the_letter(self):
        with Session() as session:
            self.open(session, "4")
            self.assertEqual(session.end(), 0)
            expected = "6\n<white>\n" + expected_screens.ADVANCED_OPTIONS + "4\n<white>\n"
            self.assertTrue(session.shows(expected), session.coloured())

    def test_every_entry(self):
        answers = {
            "2": "  * x64         = Yes\n",
            "4": "The swap multiplication test is not available in this build yet.",
        }
        for choice, text in answers.items():
            with Session() as session:
                self.open(session, choice)
                self.assertEqual(session.end(), 0)
                self.assertIn(text, session.text())

    def test_the_log_formula_generator(self):
        with Session() as session:
            self.open(session, "1")
            session.answer("\nLog(n)\nn = ", "2")
            session.answer("\nDecimal Digits\ndec = ", "1m")
            self.assertEqual(session.end(), 0)
            for text in ("\nGenerating Secondary Formula...     ", "\nPrimary Formula:\nLog[2] =",
                         "\n18 * ArcCoth[26]\n-2 * ArcCoth[4801]\n8 * ArcCoth[8749]\n\n        Cost = ",
                         "\nSecondary Formula:\nLog[2] =", "\n144 * ArcCoth[251]\n"):
                self.assertIn(text, session.text())

    def test_the_validator_asks_for_a_file(self):
        with Session() as session:
            self.open(session, "0")
            session.answer("\nBenchmark Validator\n\nEnter Path of Validation File:\n", "no such file")
            self.assertEqual(session.end(), 0)
            self.assertIn("\nUnable to open validation file: no such file.txt\n", session.text())

    def test_the_range_is_0_to_4(self):
        with Session() as session:
            self.open(session, "5")
            session.answer("option: ", "-1")
            session.answer("option: ", "99999999999999999999")
            session.answer("option: ", "4")
            self.assertEqual(session.end(), 0)
            self.assertEqual(session.text().count("option: "), 5)

    def test_the_end_of_input_ends_the_program(self):
        with Session() as session:
            session.answer("option: ", "6")
            session.wait_for("option: ")
            session.type_end_of_input()
            self.assertEqual(session.end(), 1)
            self.assertEqual(session.text().count("There is no more input: the program ends here."), 1)


class Validator(ProgramTest):
    """The colours of its answers; benchmark_test.py has what it answers when."""

    def validate(self, content):
        """The ended session in which a file of this content was validated."""
        path = os.path.join(self.folder, "file.txt")
        with open(path, "wb") as file:
            file.write(content)
        with Session("validate") as session:
            session.answer("Enter Path of Validation File:\n", path)
            self.assertEqual(session.end(), 0)
            self.assertTrue(session.shows("<P>Benchmark Validator\n<white>\nEnter Path of Validation File:\n<T>"),
                            session.coloured())
            return session

    def test_colours_of_every_outcome(self):
        code, output = self.run_program("custom", "pi", "-dec:1000", "-hex:0", "-o", self.folder, cwd=self.folder)
        self.assertEqual(code, 0, output)
        name = re.search("Validation File: (.*)\n", output)[1]
        with open(os.path.join(self.folder, name), "rb") as file:
            content = file.read()
        time = content.index(b"Total Computation Time:    ") + 27
        encoding = "File Format: <G>UTF-8<white>\n\n"
        for text, edited in (
                ("Validation Format 1.3\n\n<G>Validation Passed!\n<white>Computation Time:   <Y>", content),
                ("Validation Format 1.3\n\n\n<R>Validation Failed: Invalid Hash\n<white>",
                 content[:time] + b"9" + content[time + 1:]),
                ("\n<R>This validation file version is too new.\nPlease use a newer version of Kelvara.\n<white>",
                 content.replace(b"1.3\r\n", b"1.4\r\n", 1)),
                ("\n<R>Validation file versions 1.0 an 1.1 are no longer supported.\n"
                 "To validate this file, please use Kelvara v0.5.5.\n<white>",
                 content.replace(b"1.3\r\n", b"1.0\r\n", 1))):
            with self.subTest(text=text):
                session = self.validate(edited)
                self.assertTrue(session.shows(encoding + text), session.coloured())


class CompilationOptions(unittest.TestCase):
    def run_screen(self):
        """The ended session that shows the screen."""
        with Session() as session:
            session.answer("option: ", "6")
            session.answer("option: ", "3")
            session.wait_for("Press any key to continue . . . ")
            self.assertNotIn("====", session.text())
            session.type(" ")
            self.assertEqual(session.end(), 0)
            return session

    def test_to_the_letter(self):
        session = self.run_screen()
        self.assertTrue(session.shows("3\n<white>\n" + expected_screens.COMPILATION_INTRODUCTION), session.coloured())
        self.assertTrue(session.shows(expected_screens.FEATURE_CONTROLS), session.coloured())

        plain = session.text()
        lines = plain[plain.index("*Includes experimental"):].split("\n")[1:]
        expected = [""]
        for heading, content in expected_screens.SECTIONS:
            expected += ["", "=" * 64, heading, ""] + content
        self.assertEqual(len(lines[:len(expected)]), len(expected))
        for line, wanted in zip(lines, expected):
            if wanted.endswith("*"):
                self.assertTrue(line.startswith(wanted[:-1]) and len(line) > len(wanted), line)
            else:
                self.assertEqual(line, wanted)
        self.assertEqual([line for line in lines[len(expected):] if line], [])

    def test_names_the_toolchain_and_the_day(self):
        self.assertRegex(self.run_screen().text(), r"\nCompiler                (GCC|Clang)\nVersion                 \d+\.\d+[^\n]*\n"
                         r"Compile Date            [A-Z][a-z]{2} [ 1-3]\d \d{4}\n")

    def test_colours_of_its_sections(self):
        session = self.run_screen()
        for text in ("<T>" + "=" * 64 + "\n<Y>Objects Library\n<white>\n", "Verbose Status          <R>Disabled<white>\n",
                     "InvSqrt Purturb         <G>Enabled<white>\n",
                     "Primary Algorithm           <P>f64v1_AVX512<white>\n"):
            self.assertTrue(session.shows(text), session.coloured())


class AboutAction(ProgramTest):
    def test_to_the_letter(self):
        with Session("about") as session:
            self.assertEqual(session.end(), 0)
            self.assertTrue(session.shows("\n" + expected_screens.ABOUT), session.coloured())

    def test_further_arguments_are_left_alone(self):
        code, output = self.run_program("about:1", "-x", "nonsense")
        self.assertEqual(code, 0)
        self.assertIn("\nDisclaimer:\n", output)
        self.assertNotIn("\x1b", output)


if __name__ == "__main__":
    unittest.main(verbosity=1)
