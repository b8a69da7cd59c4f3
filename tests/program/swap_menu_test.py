"""Swap Mode of the custom-compute menu and its actions, in the real program: screens to the letter, every way through."""

import os
import unittest

from custom_menu_session import CustomMenuTest
from kelvara_program import ProgramTest
from terminal_session import Session


def row(column, label, value):
    return label.ljust(column) + value + "<white>"


NEEDS = (row(30, "  9     Swap Configuration:", "<g>Not Set - Use default path.") + "\n" +
         row(30, "  10     Bytes/Seek", "<G>1,048,576 (1.00 MiB)") + " for entire drive array\n" +
         "  11     Memory Needed".ljust(30) + "<Y>")

DISK = row(30, "        Disk Needed", "<y>not available in this build yet") + "  +  <P>"

ENTRIES = """\
<white> for output

<g>  20    Load from Configuration File
  21    Save to Configuration File
<white>
  0     Start Computation!
<R>        Cannot Start: Swap Mode is not available in this build yet.
<white>option: """

MODES = """\
Select a Mode:

Option      Mode            Memory      Disk Memory

1      Ram Only             <Y>"""

SWAP_MENU = """\
1  -  Quick Configure:  <T>Default Path Only<white>
2  -  Quick Configure:  <Y>RAID 0<white>  (No Redundancy)
3  -  Quick Configure:  <G>RAID 3<white>  (Tolerate 1 Drive Failure)

Manual Configure Hybrid RAID:
4  -      Add a new Group
5  -      Add a new Drive/Path

6  -  Set per-drive Buffer Size
7  -  Clear All and Start Over

"""


class SwapMenu(CustomMenuTest):
    """Every session begins at the menu of Swap Mode."""

    def menu(self):
        session = super().menu()
        self.choose(session, "7", "2")
        return session

    def test_to_the_letter(self):
        with self.menu() as session:
            # An amount that no machine has to be warned of.
            self.choose(session, "11", "1", ("Bytes: ", "1MB"), "0")
            self.leave(session)
            self.assertTrue(session.shows(MODES), session.coloured())
            self.assertTrue(session.shows("2      Swap Mode         >".ljust(28) + "<y>not available in this build yet"),
                            session.coloured())
            self.assertTrue(session.shows(row(30, "  7     Computation Mode:", "<G>Swap Mode")), session.coloured())
            for part in (NEEDS, DISK, ENTRIES):
                self.assertTrue(session.shows(part), session.coloured())

    def test_it_cannot_be_started(self):
        with self.menu() as session:
            for answer in ("0", "", "-1"):
                session.answer("option: ", answer)
            self.choose(session, "12")
            self.leave(session)
            self.assertNotIn("Begin Computation", session.text())

    def test_every_mode_keeps_its_choices(self):
        with self.menu() as session:
            self.choose(session, "3", ("Digits: ", "1m"))
            self.choose(session, "11", "1", ("Bytes: ", "2.5GB"), "0")
            self.choose(session, "7", "1")
            self.assertEqual(self.shown(session, "Decimal Digits:"), "50,000")
            self.assertEqual(self.shown(session, "Computation Mode:"), "Ram Only")
            self.choose(session, "3", ("Digits: ", "777"))
            self.choose(session, "7", "2")
            self.assertEqual(self.shown(session, "Decimal Digits:"), "1,000,000")
            self.assertEqual(self.shown(session, "Memory Needed"), "2,684,354,560 (2.50 GiB)")
            self.choose(session, "7", "1")
            self.assertEqual(self.shown(session, "Decimal Digits:"), "777")
            self.leave(session)

    def test_the_swap_configuration(self):
        with self.menu() as session:
            session.answer("option: ", "9")
            session.wait_for("The current configuration is invalid.\n")
            self.choose(session, "0", "3", ("Drives: ", "3"), ("Path 0: ", self.folder), ("Path 1: ", self.folder),
                        ("Path 2: ", self.folder), "0")
            self.assertEqual(self.shown(session, "Swap Configuration:"), "RAID 3 with 3 paths")
            self.assertEqual(self.shown(session, "Bytes/Seek"), "2,097,152 (2.00 MiB) for entire drive array")
            self.leave(session)
            self.assertTrue(session.shows(SWAP_MENU + "<R>The current configuration is invalid.\n\n<white>option: "),
                            session.coloured())
            self.assertTrue(session.shows(SWAP_MENU + "0  -  Done\n\noption: "), session.coloured())
            self.assertTrue(session.shows("<T>        " + self.folder + "<G>   ( Status: ok )\n<white>"),
                            session.coloured())
            self.assertEqual(os.listdir(self.folder), [])

    def test_bytes_per_seek(self):
        with self.menu() as session:
            self.choose(session, "10", ("Bytes: ", "1000"))
            self.assertEqual(self.shown(session, "Bytes/Seek"), "4,096 (4.00 KiB) for entire drive array")
            self.choose(session, "9", "2", ("Drives: ", "1"), ("Path 0: ", self.folder), "0")
            self.assertEqual(self.shown(session, "Swap Configuration:"), "One path at: " + self.folder)
            self.assertEqual(self.shown(session, "Bytes/Seek"), "4,096 (4.00 KiB) for entire drive array")
            self.choose(session, "10", ("Bytes: ", "0"))
            self.assertEqual(self.shown(session, "Bytes/Seek"), "1,048,576 (1.00 MiB) for entire drive array")
            self.leave(session)

    def test_more_memory_than_the_machine_has_is_warned_of(self):
        with self.menu() as session:
            self.choose(session, "11", "1", ("Bytes: ", "1E"), "0")
            self.leave(session)
            self.assertTrue(session.shows("  0     Start Computation!\n"
                                          "<R>        Warning: There is insufficient physical memory.\n"
                                          "<white><R>        Cannot Start: Swap Mode is not available in this build yet.\n"),
                            session.coloured())

    def test_options_without_meaning_show_the_menu_again(self):
        with self.menu() as session:
            for option in range(12, 20):
                self.choose(session, str(option))
            self.leave(session)
            self.assertEqual(session.text().count("Custom Compute a Constant\n"), 10)

    def test_the_end_of_input_at_every_prompt(self):
        for option, prompt in {"9": "option: ", "10": "Bytes: ", "11": "option: "}.items():
            with self.menu() as session:
                session.answer("option: ", option)
                session.wait_for(prompt)
                session.type_end_of_input()
                self.assertEqual(session.end(), 1, option)
                self.assertEqual(session.text().count("There is no more input: the program ends here."), 1)

    def test_it_is_saved_loaded_and_not_run(self):
        file = os.path.join(self.folder, "swap.ini")
        with self.menu() as session:
            self.choose(session, "3", ("Digits: ", "123456"))
            self.choose(session, "9", "2", ("Drives: ", "2"), ("Path 0: ", self.folder), ("Path 1: ", ""), "0")
            self.choose(session, "11", "1", ("Bytes: ", "3GB"), "0")
            self.choose(session, "21", ("Path: ", file))
            self.leave(session)
        with Session("custom") as session:
            session.wait_for("Start Computation!")
            self.choose(session, "20", ("Path: ", file))
            for label, value in (("Computation Mode:", "Swap Mode"), ("Decimal Digits:", "123,456"),
                                 ("Swap Configuration:", "RAID 0 with 2 paths"),
                                 ("Bytes/Seek", "2,097,152 (2.00 MiB) for entire drive array"),
                                 ("Memory Needed", "3,221,225,472 (3.00 GiB)")):
                self.assertEqual(self.shown(session, label), value)
            self.leave(session)
        self.assert_refused("Cannot run computation with these parameters.", "config", file)
        self.assert_refused("Swap Mode is not available in this build yet.", "config", file)


class SwapModeActions(ProgramTest):
    def test_a_computation_is_not_available_yet(self):
        self.assert_refused("Swap Mode is not available in this build yet.", "custom", "e", "-dec:1m", "-mode:swap",
                            "-M:4G", "-minIO:1M", "-swap:raid3", self.folder, self.folder, "-TD:2", "-o", self.folder)
        self.assertEqual(os.listdir(self.folder), [])

    def test_options_are_checked(self):
        self.assert_refused("Unrecognized mode", "custom", "pi", "-mode:swap", "-swap:x")
        self.assert_refused("Expected more parameters.", "custom", "pi", "-mode:swap", "-swap")
        self.assert_refused("Expected more parameters.", "custom", "pi", "-mode:swap", "-swap:raid0", exit_code=0)
        self.assert_refused("This path is not writable.", "custom", "pi", "-mode:swap", "-swap:raid0",
                            self.folder + "/missing")
        self.assert_refused("There is a limit of 8 paths for RAID3.", "custom", "pi", "-mode:swap", "-swap:raid3",
                            *[self.folder] * 9)

    def test_a_file_without_swap_files(self):
        file = os.path.join(self.folder, "swap.ini")
        with open(file, "w", encoding="utf-8") as config:
            config.write('{ Action : "CustomCompute" CustomCompute : {\n'
                         'Constant : { Constant : "e" Algorithm : "0" }\n'
                         'ComputeSize : { DecimalDigits : 777 EnableHexDigits : "false" }\n'
                         'Output : { Path : "" DigitsPerFile : 0 } Mode : "swap"\n'
                         'Parallelism : { TaskDecomposition : 3 Framework : "none" }\n'
                         'Allocator : { Allocator : "malloc" } BytesPerSeek : 0 Memory : 1000000 } }')
        self.assert_refused("Key not found: RaidFile", "config", file)


if __name__ == "__main__":
    unittest.main(verbosity=1)
