"""The menu "Custom Compute a Constant" of the real program: its screen to the letter, and every way through it."""

import os
import unittest

from kelvara_program import ProgramTest
from terminal_session import ON_WINDOWS, Session

PATH_PROMPT = ('Enter the path to write the digits to. (e.g. "C:" or "C:/temp" )' if ON_WINDOWS else
               'Enter the path to write the digits to. (e.g. "/tmp" or "digits" )')

def row(column, label, value):
    return label.ljust(column) + value + "<white>\n"


CHOICES = ("<P>\n\nCustom Compute a Constant\n\n<white>" +
           row(20, "  1     Constant:", "<G>Pi") +
           row(20, "  2     Algorithm:", "<Y>Chudnovsky Formula") +
           "\n" +
           row(30, "  3     Decimal Digits:", "<G>50,000") +
           row(30, "  4     Hexadecimal Digits:", "<G>41,525") +
           "\n" +
           row(30, "  5     Write Digits To:", "<T>Default Path") +
           row(30, "  6     Compress Output:", "<T>None - Write digits to a text file.") +
           "\n" +
           row(30, "  7     Computation Mode:", "<R>Ram Only") +
           "  8     Multi-Threading:".ljust(30) + "<T>Push Pool<white>  ->  <Y>")

ENTRIES = """\
<white> for output

<g>  20    Load from Configuration File
  21    Save to Configuration File
<white>
  0     Start Computation!
option: """


class CustomMenu(ProgramTest):
    """Every session begins at the menu's prompt."""

    def menu(self):
        session = Session("custom")
        session.wait_for("Start Computation!")
        return session

    def choose(self, session, *answers):
        """Types answers, each at an own prompt, until the menu stands there again."""
        for answer in answers:
            prompt, keys = answer if isinstance(answer, tuple) else ("option: ", answer)
            session.answer(prompt, keys)
        session.wait_for("Start Computation!")

    def shown(self, session, label):
        """The value behind a label in the menu shown last."""
        text = session.text()
        menu = text[text.rindex("Custom Compute a Constant\n"):]
        return next(line for line in menu.split("\n") if label in line).split(label)[1].strip()

    def leave(self, session):
        session.wait_for("option: ")
        session.type_end_of_input()
        self.assertEqual(session.end(), 1)
        self.assertIn("There is no more input: the program ends here.", session.text())

    def test_to_the_letter(self):
        with self.menu() as session:
            self.leave(session)
            self.assertTrue(session.shows(CHOICES), session.coloured())
            self.assertTrue(session.shows(ENTRIES), session.coloured())
            self.assertRegex(session.text(),
                             r" \(randomization on\)\n\n\n  9     Memory Needed {9}[0-9,]+ \([^)]+iB\)\n"
                             r" {8}Disk Needed {11}0 \( 0 bytes\)  \+  [0-9,]+ \([^)]+iB\) for output\n\n  20    Load")
            self.assertTrue(session.shows("  9     Memory Needed".ljust(30) + "<Y>"), session.coloured())
            self.assertTrue(session.shows("        Disk Needed".ljust(30) + "<y>0 ( 0 bytes)<white>  +  <P>"),
                            session.coloured())

    def test_a_constant_and_its_algorithm(self):
        with self.menu() as session:
            self.choose(session, "1", "2", "2", ("Algorithm: ", "1"))
            self.assertEqual(self.shown(session, "Constant:"), "e")
            self.choose(session, "2", ("Algorithm: ", "1"))
            self.leave(session)
            self.assertEqual(self.shown(session, "Algorithm:"), "Taylor Series of exp(-1)")

    def test_a_constant_that_cannot_be_computed_cannot_be_started(self):
        with self.menu() as session:
            session.answer("option: ", "1")
            session.answer("option: ", "0")
            session.answer("n = ", "16")
            session.answer("n = ", "15")
            session.wait_for("Start Computation!")
            self.assertEqual(self.shown(session, "Constant:"), "Sqrt(15)")
            self.assertIn("Sqrt(15) is not available in this build yet.", session.text())
            session.answer("option: ", "0")
            session.answer("option: ", "")
            self.choose(session, "12")
            self.leave(session)
            self.assertNotIn("Begin Computation", session.text())

    def test_decimal_digits(self):
        with self.menu() as session:
            self.choose(session, "3", ("Digits: ", "25m"))
            self.assertEqual(self.shown(session, "Decimal Digits:"), "25,000,000")
            self.choose(session, "3", ("Digits: ", "25M"))
            self.assertEqual(self.shown(session, "Decimal Digits:"), "26,214,400")
            self.choose(session, "3", ("Digits: ", "1,000"))
            self.assertEqual(self.shown(session, "Decimal Digits:"), "1,000")
            self.assertEqual(self.shown(session, "Hexadecimal Digits:"), "831")
            for refused in ("99", "", "letters", "0"):
                self.choose(session, "3", ("Digits: ", refused))
                self.assertEqual(self.shown(session, "Decimal Digits:"), "1,000")
            self.choose(session, "3", ("Digits: ", "1000000000000051"))
            # Out of the prompt's own range.
            self.choose(session, "3", ("Digits: ", "-1"), ("Digits: ", "99999999999999999999"), ("Digits: ", "200"))
            self.leave(session)
            text = session.text()
            self.assertEqual(text.count("Computation size must be at least 100 decimal digits."), 4)
            self.assertIn("Computation size cannot be larger than 1,000,000,000,000,050 decimal digits.", text)
            self.assertIn("Select the # of decimal digits to compute:\n\nEnter the number of digits: (e.g.", text)
            self.assertEqual(self.shown(session, "Decimal Digits:"), "200")

    def test_hexadecimal_digits(self):
        with self.menu() as session:
            self.choose(session, "4", ("Digits: ", "0"))
            self.assertEqual(self.shown(session, "Hexadecimal Digits:"), "Disabled")
            self.choose(session, "4", ("Digits: ", "99"))
            self.assertEqual(self.shown(session, "Hexadecimal Digits:"), "Disabled")
            self.choose(session, "4", ("Digits: ", "100"))
            self.leave(session)
            self.assertEqual(self.shown(session, "Hexadecimal Digits:"), "100")
            self.assertTrue(session.shows("  4     Hexadecimal Digits:".ljust(30) + "<g>Disabled"), session.coloured())
            self.assertIn("Select the # of hexadecimal digits to compute: (0 to disable)\n\nEnter the", session.text())
            self.assertIn("Computation size must be at least 100 decimal digits.", session.text())

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

    def test_compression(self):
        with self.menu() as session:
            session.answer("option: ", "6")
            session.wait_for("Computation is too small for compression.\n")
            session.wait_for("Press any key to continue . . . ")
            session.type(" ")
            session.wait_for("Start Computation!")
            self.choose(session, "3", ("Digits: ", "2m"))
            self.choose(session, "6", "0")
            self.choose(session, "6", "1")
            self.choose(session, "6", "3", "2", ("Digits per file: ", "999999"), ("Digits per file: ", "1m"))
            self.leave(session)
            self.assertEqual(session.text().count("Compressed digit files are not available in this build yet."), 2)
            self.assertEqual(self.shown(session, "Compress Output:"), "None - Write digits to a text file.")

    def test_the_mode(self):
        with self.menu() as session:
            self.choose(session, "7", "0", "3", "1")
            self.assertEqual(self.shown(session, "Computation Mode:"), "Ram Only")
            self.choose(session, "7", "2")
            self.assertEqual(self.shown(session, "Computation Mode:"), "Swap Mode")
            self.leave(session)

    def test_the_parallel_framework(self):
        with self.menu() as session:
            session.answer("option: ", "8")
            session.answer("option: ", "2")
            for refused in ("0", "65537", "-1", "letters"):
                session.answer("Task Decomposition: ", refused)
                session.wait_for("\nPlease choose a number between 1 and 65,536.\n")
            session.answer("Task Decomposition: ", "9")
            session.answer("option: ", "3")
            session.answer("option: ", "1")
            self.choose(session, "4", "0")
            self.leave(session)
            self.assertEqual(self.shown(session, "Multi-Threading:"), "C++ std::async()  ->  9 / ?  (async | deferred)")

    def test_the_memory(self):
        with self.menu() as session:
            session.answer("option: ", "9")
            session.wait_for("Memory Settings\n")
            self.choose(session, "1", "2", "0", "0")
            self.leave(session)
            self.assertIn("   2    Memory Allocator:       C malloc()\n   0    Done!\n", session.text())

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

    def test_options_without_meaning_show_the_menu_again(self):
        with self.menu() as session:
            for option in range(10, 20):
                self.choose(session, str(option))
            self.choose(session, "22", "-1", "99999999999999999999", "19")
            self.leave(session)
            self.assertEqual(session.text().count("Custom Compute a Constant\n"), 12)
            self.assertNotIn("Begin Computation", session.text())

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
