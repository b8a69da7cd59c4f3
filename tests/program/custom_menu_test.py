"""What the menu "Custom Compute a Constant" of the real program does; transcripts_test.py has its screens."""

import math
import os
import unittest

from custom_menu_session import CustomMenuTest
from terminal_session import ON_WINDOWS

PATH_PROMPT = ('Enter the path to write the digits to. (e.g. "C:" or "C:/temp" )' if ON_WINDOWS else
               'Enter the path to write the digits to. (e.g. "/tmp" or "digits" )')


class CustomMenu(CustomMenuTest):
    def test_a_square_root_is_computed_of_what_is_no_square(self):
        with self.menu() as session:
            session.answer("option: ", "1")
            session.answer("option: ", "0")
            session.answer("n = ", "16")
            session.answer("n = ", "15")
            session.wait_for("Start Computation!")
            self.assertEqual(self.shown(session, "Constant:"), "Sqrt(15)")
            self.choose(session, "3", ("Digits: ", "100"))
            self.choose(session, "5", ("Path: ", self.folder))
            session.answer("option: ", "0")
            self.assertEqual(session.end(), 0)
            self.assertIn("This number is a perfect square.", session.text())
        digits = self.files()["Sqrt(15) - Dec - Newton.txt"].decode()
        self.assertEqual(int(digits.replace(".", "")), math.isqrt(15 * 10**200))

    def test_the_output_path(self):
        with self.menu() as session:
            self.choose(session, "5", ("Path: ", self.folder))
            self.assertEqual(self.shown(session, "Write Digits To:"), self.folder)
            self.choose(session, "5", ("Path: ", "no/such folder"))
            self.assertEqual(self.shown(session, "Write Digits To:"), "no/such folder")
            session.wait_for("        Cannot Start: The folder for the digit files does not exist.\n")
            session.answer("option: ", "0")
            self.choose(session, "5", ("Path: ", ""))
            self.leave(session)
            self.assertTrue(session.shows("<R>        Cannot Start: The folder for the digit files does not exist.\n"
                                          "<white>option: "), session.coloured())
            self.assertEqual(self.shown(session, "Write Digits To:"), "Default Path")
            self.assertIn(PATH_PROMPT + "\n\nPath: ", session.text())
            self.assertNotIn("Begin Computation", session.text())

    def test_the_mode(self):
        with self.menu() as session:
            self.choose(session, "7", "0", "3", "1")
            self.assertEqual(self.shown(session, "Computation Mode:"), "Ram Only")
            self.choose(session, "7", "2")
            self.assertEqual(self.shown(session, "Computation Mode:"), "Swap Mode")
            self.leave(session)

    def test_a_computation_larger_than_the_machine_is_warned_of(self):
        with self.menu() as session:
            self.choose(session, "3", ("Digits: ", "1000t"))
            self.leave(session)
            self.assertTrue(session.shows("  0     Start Computation!\n"
                                          "<R>        Warning: There is insufficient physical memory.\n"
                                          "<white>option: "), session.coloured())

    # Answers without digits are 0.
    def test_an_empty_answer_starts_the_computation(self):
        with self.menu() as session:
            self.choose(session, "3", ("Digits: ", "100"))
            self.choose(session, "5", ("Path: ", self.folder))
            session.answer("option: ", "")
            self.assertEqual(session.end(), 0)
            # The menu does not come back.
            self.assertEqual(session.text().count("Custom Compute a Constant\n"), 3)
            self.assertEqual(sorted(self.files()), ["Pi - Dec - Chudnovsky.txt", "Pi - Hex - Chudnovsky.txt"])

    def test_the_end_of_input_at_every_prompt(self):
        prompts = {
            "1": "option: ", "2": "Algorithm: ", "3": "Digits: ", "4": "Digits: ", "5": "Path: ", "7": "option: ",
            "8": "option: ", "9": "option: ", "20": "Path: ", "21": "Path: ",
        }
        for option, prompt in prompts.items():
            with self.menu() as session:
                session.answer("option: ", option)
                session.wait_for(prompt)
                session.type_end_of_input()
                self.assertEqual(session.end(), 1, option)
                self.assertEqual(session.text().count("There is no more input: the program ends here."), 1)

    def files(self):
        """Name and content of the digit files."""
        contents = {}
        for name in os.listdir(self.folder):
            if name.endswith(".txt"):
                with open(os.path.join(self.folder, name), "rb") as file:
                    contents[name] = file.read()
        return contents

    def test_a_saved_computation_is_repeated_from_its_file(self):
        file = os.path.join(self.folder, "mine.ini").replace("\\", "/")
        with self.menu() as session:
            session.answer("option: ", "1")
            self.choose(session, "2")
            self.choose(session, "2", ("Algorithm: ", "1"))
            self.choose(session, "3", ("Digits: ", "1234"))
            self.choose(session, "5", ("Path: ", self.folder))
            self.choose(session, "21", ("Path: ", file))
            session.answer("option: ", "0")
            session.wait_for("Begin Computation:")
            self.assertEqual(session.end(), 0, session.text())
        computed = self.files()
        self.assertEqual(sorted(computed), ["e - Dec - exp(-1).txt", "e - Hex - exp(-1).txt"])
        for name in computed:
            os.remove(os.path.join(self.folder, name))
        code, output = self.run_program("config", file)
        self.assertEqual(code, 0, output)
        self.assertEqual(self.files(), computed)

        with self.menu() as session:
            self.choose(session, "3", ("Digits: ", "5000"))
            self.choose(session, "20", ("Path: ", file))
            self.assertEqual(self.shown(session, "Constant:"), "e")
            self.assertEqual(self.shown(session, "Decimal Digits:"), "1,234")
            self.assertEqual(self.shown(session, "Write Digits To:"), self.folder)
            # Option 0 of the loaded settings computes the same again.
            for name in computed:
                os.remove(os.path.join(self.folder, name))
            session.answer("option: ", "0")
            self.assertEqual(session.end(), 0, session.text())
        self.assertEqual(self.files(), computed)

    def test_a_file_that_is_refused_changes_nothing(self):
        broken = os.path.join(self.folder, "broken.ini")
        with open(broken, "w", encoding="utf-8") as file:
            file.write('{ Action : "CustomCompute" CustomCompute : {\n'
                       'Constant : { Constant : "e" Algorithm : "0" }\n'
                       'ComputeSize : { DecimalDigits : 777 EnableHexDigits : "false" }\n'
                       'Output : { Path : "" DigitsPerFile : 0 } Mode : "ram"\n'
                       'Parallelism : { TaskDecomposition : 3 Framework : "none" }\n'
                       'Allocator : { Allocator : "nothing" } } }')
        with self.menu() as session:
            tasks = self.shown(session, "Multi-Threading:")
            self.choose(session, "3", ("Digits: ", "5000"))
            self.choose(session, "20", ("Path: ", broken))
            self.choose(session, "20", ("Path: ", os.path.join(self.folder, "none.ini")))
            self.choose(session, "20", ("Path: ", ""))
            self.choose(session, "21", ("Path: ", os.path.join(self.folder, "none/mine.ini")))
            self.leave(session)
            text = session.text()
            self.assertIn("Invalid Memory Allocator: nothing", text)
            self.assertEqual(text.count("Unable to open file."), 2)
            self.assertEqual(text.count("Unable to create file."), 1)
            self.assertEqual(self.shown(session, "Constant:"), "Pi")
            self.assertEqual(self.shown(session, "Decimal Digits:"), "5,000")
            self.assertEqual(self.shown(session, "Hexadecimal Digits:"), "4,153")
            self.assertEqual(self.shown(session, "Multi-Threading:"), tasks)


if __name__ == "__main__":
    unittest.main(verbosity=1)
