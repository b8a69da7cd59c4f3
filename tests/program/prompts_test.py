"""Answers that make no sense, at every prompt of the real program.

The rows of `PROMPTS` are all there is to add for one prompt more. Answers come through a pipe, whose end is the
last "answer" of every test.
"""

import os
import unittest

from digit_files import write_digit_files
from kelvara_program import ProgramTest
from terminal_session import ON_WINDOWS

HUGE = "99999999999999999999999"
END_OF_INPUT = "There is no more input: the program ends here.\n"
BIGGEST = 2**64 - 1


class Prompt:
    """A prompt, the answers that lead to it, and what it does with bad ones."""

    def __init__(self, name, route, text, *, again=(), refused=(), goes_on=None, action="custom", when=None):
        self.name = name
        self.route = route.split()
        self.text = text
        self.again = again        # is asked anew
        self.refused = refused    # an exception is told, and the menu returns as it was
        self.goes_on = goes_on or {}    # is taken: what the program then shows
        self.action = action
        self.when = when or (lambda: True)


def number(name, route, low, high, text="option: ", *, goes_on=None, **more):
    """A prompt for a number in a range. Answers without digits are 0."""
    again = [str(low - 1), str(high + 1), "-1", "-" + HUGE, HUGE, "9223372036854775808"]
    if low > 0:
        again += ["", "letters", "-", "\ufffd", "0x10"]
    return Prompt(name, route, text, again=again, goes_on=goes_on, **more)


def argument(name, route, low, high, squares=()):
    again = ["", "letters", "-5", "0", str(low - 1), str(high + 1), str(BIGGEST + 1), HUGE, *squares]
    return Prompt(name, route, "n = ", again=again)


def digit(name, route, text, low, high):
    """A prompt of the viewer for a digit's number, a number of digits, or a file's."""
    again = [*NO_DIGIT_COUNT]
    if low > 0:
        again += ["", "letters", "0", str(low - 1)]
    if high < BIGGEST:
        again += [str(high + 1), str(BIGGEST), "15E"]
    return Prompt(name, route, text, again=again, action="ordalis")


def path(name, route, text="Path: ", **more):
    return Prompt(name, route, text, **more)


def several_processors():
    return len(os.sched_getaffinity(0)) > 1


OUT_OF_LIMITS = ["99", "1", "1000000000000051", str(BIGGEST), "15E"]
NO_DIGIT_COUNT = ["-1", "-" + HUGE, HUGE, str(BIGGEST + 1), "16E", HUGE + "E"]
NO_FILE = "Unable to open file."
LONG_PATH = "x/" * 5000

PROMPTS = [
    number("main menu", "", 0, 7, action=None, goes_on={"letters": "\nBenchmark Pi:\n"}),
    number("advanced options", "6", 0, 4, action=None, goes_on={"": "\nEnter Path of Validation File:\n"}),
    number("benchmark type", "", 0, 1, action="bench", when=several_processors),
    number("benchmark sizes", "1", 0, 16, action="bench", when=several_processors),
    number("SuperPi sizes", "1 16", 0, 17, action="bench", when=several_processors),
    number("stress tester", "1", 0, 15, action=None),
    number("stress tester without a test", "1 15", 1, 15, action=None),
    number("threads of the stress tester", "1 2", 1, 65536, "Threads = ", action=None),
    # Menus show the memory that is free, so that what is taken is compared by the unit's own tests.
    Prompt("time of the stress tester", "1 4", "Time (seconds) = ", action=None, again=["-1", "-" + HUGE]),
    number("memory of the stress tester", "1 3 2 0", 0, 2, action=None),
    Prompt("memory cap of the stress tester", "1 3 1", "Bytes: ", action=None),
    path("validator", "", "Enter Path of Validation File:\n", action="validate", goes_on={
        "": "Unable to open validation file: .txt\n", "\x01x": "Unable to open validation file: ",
        LONG_PATH: "Unable to open validation file: "}),
    number("custom menu", "", 0, 21),
    number("constants", "1", 0, 9, goes_on={"": "\nSquare Root of n\n", "letters": "\nSquare Root of n\n"}),
    argument("Sqrt(n)", "1 0", 2, BIGGEST, squares=["4", "16", "4294967296"]),
    argument("ArcCoth(n)", "1 4", 2, 2**32 - 1),
    argument("Log(n)", "1 5", 2, 2**31 - 1),
    Prompt("n of the log formulas", "6 1", "n = ", action=None, again=[str(BIGGEST + 1), HUGE]),
    Prompt("digits of the log formulas", "6 1 2", "dec = ", action=None,
           again=["", "letters", "0", "99", "1000000000000051", *NO_DIGIT_COUNT]),
    number("algorithms of Sqrt(n)", "1 0 2 2", 0, 0, "Algorithm: "),
    number("algorithms of Golden Ratio", "1 1 2", 0, 0, "Algorithm: "),
    number("algorithms of e", "1 2 2", 0, 1, "Algorithm: "),
    number("algorithms of Pi", "2", 0, 1, "Algorithm: ", goes_on={"": "  2     Algorithm:  Chudnovsky Formula\n"}),
    number("algorithms of ArcCoth(n)", "1 4 2 2", 0, 0, "Algorithm: "),
    number("algorithms of Log(n)", "1 5 10 2", 0, 1, "Algorithm: "),
    number("algorithms of Zeta(3)", "1 6 2", 0, 1, "Algorithm: "),
    number("algorithms of Lemniscate", "1 7 2", 0, 1, "Algorithm: "),
    number("algorithms of Catalan", "1 8 2", 0, 1, "Algorithm: "),
    number("algorithms of Euler's Constant", "1 9 2", 0, 1, "Algorithm: "),
    Prompt("decimal digits", "3", "Digits: ", again=NO_DIGIT_COUNT, refused=["", "letters", "0", *OUT_OF_LIMITS]),
    Prompt("hexadecimal digits", "4", "Digits: ", again=NO_DIGIT_COUNT, refused=OUT_OF_LIMITS,
           goes_on={"": "Hexadecimal Digits:   Disabled\n", "letters": "Hexadecimal Digits:   Disabled\n"}),
    path("output path", "5", goes_on={
        "": "  5     Write Digits To:      Default Path\n", "\x01x": "The folder for the digit files does not exist.",
        LONG_PATH: "The folder for the digit files does not exist."}),
    number("output format", "3 1m 4 0 6", 0, 2, goes_on={"": "  6     Compress Output:      None - Write"}),
    Prompt("digits per file", "3 1m 4 0 6 2", "Digits per file: ",
           again=["", "letters", "0", "999999", "1000000000000051", *NO_DIGIT_COUNT]),
    number("mode", "7", 1, 2),
    number("swap configuration", "7 2 9", 1, 7),
    number("swap configuration that is set", "7 2 9 1", 0, 7),
    number("drives of RAID 0", "7 2 9 2", 1, 64, "Drives: "),
    number("drives of RAID 3", "7 2 9 3", 2, 8, "Drives: "),
    number("modes of a swap group", "7 2 9 4", 0, 2, "choice: "),
    number("group of a swap path", "7 2 9 4 0 5", 0, 0, "Which Group: "),
    path("swap path", "7 2 9 4 0 5 0", "Path : "),
    Prompt("swap buffer", "7 2 9 6", "Bytes: "),
    Prompt("Bytes/Seek", "7 2 10", "Bytes: "),
    number("memory of Swap Mode", "7 2 11 2 0", 0, 2),
    Prompt("memory cap", "7 2 11 1", "Bytes: "),
    number("parallelization", "8", 0, 5),
    number("parallelization without a framework", "8 3 0", 0, 3),
    number("parallelization by asynchronous calls", "8 3 1", 0, 4),
    number("task decomposition", "8 2", 1, 65536, "Task Decomposition: "),
    number("frameworks", "8 3", 0, 4 if ON_WINDOWS else 3, goes_on={"": "Framework:              None (No Multi"}),
    Prompt("worker threads", "8 4", "Threads (0 for unlimited threads): ", again=["-1", "-" + HUGE],
           goes_on={"": "Worker Threads:         Unlimited\n", "letters": "Worker Threads:         Unlimited\n",
                    "65537": "Worker Threads:         65536\n", HUGE: "Worker Threads:         65536\n"}),
    number("memory", "9 2 0", 0, 2),
    number("memory by pages", "9 2 1", 0, 4),
    number("memory by nodes", "9 2 2", 0, 5),
    number("allocators", "9 2", 0, 2, goes_on={"": "   2    Memory Allocator:       C malloc()\n"}),
    Prompt("nodes", "9 2 2 3", "Node #", goes_on={
        "letters": "NUMA nodes:             0", "-1": "NUMA nodes:             0",
        HUGE + "\n": f"NUMA nodes:             {BIGGEST}\n"}),
    number("digit extractor", "", 0, 5, action="bbp"),
    number("formulas of the digit extractor", "1", 0, 1, action="bbp", goes_on={"": "  1     Formula:                Plouffe"}),
    Prompt("offset", "2", "Offset: ", action="bbp", again=["70368744177664", "64T", *NO_DIGIT_COUNT],
           goes_on={"": "  2     Hexadecimal Offset:     0\n", "letters": "Offset:     0\n",
                    "70368744177663": "Hexadecimal Offset:     70,368,744,177,663\n"}),
    Prompt("digits of the digit extractor", "3", "Digits: ", action="bbp",
           again=["", "letters", "0", "7", "1048577", *NO_DIGIT_COUNT],
           goes_on={"8": "Digits to Compute :     8   Internal Precision: 24 ",
                    "1M": "Digits to Compute :     1,048,576   Internal Precision: 1,048,592 "}),
    number("threads of the digit extractor", "4", 1, 65536, "Threads: ", action="bbp"),
    path("configuration to load", "20", refused=["", "none", "none/none", "\x01x", LONG_PATH]),
    path("configuration to save", "21", refused=["none/none", LONG_PATH]),
    path("digit file", "", "Enter the path of the file (include .txt or .qcd extensions):\n", action="ordalis"),
    number("text file", "pi.txt", 0, 3, action="ordalis", goes_on={
        "": "View a Range of Digits", "letters": "View a Range of Digits"}),
    number("hexadecimal text file", "hex.txt", 0, 3, action="ordalis"),
    digit("first digit to view", "pi.txt 0", "Starting Digit: ", 1, 250),
    digit("digits to view", "pi.txt 0 101", "Digits to View: ", 1, 150),
    digit("first digit to count", "pi.txt 1", "Starting Digit: ", 1, 250),
    digit("last digit to count", "pi.txt 1 101", "Ending Digit:   ", 101, 250),
    digit("last digit of the hash", "pi.txt 2", "Ending Digit: ", 1, 250),
    digit("digits to compress", "pi.txt 3", "Digits to Write: ", 1, 250),
    Prompt("digits per file of the viewer", "pi.txt 3 250", "Digits per file (0 for single file): ",
           again=["1", "999999", *NO_DIGIT_COUNT], action="ordalis",
           goes_on={"": "Enter a name for the digits:", "letters": "Enter a name for the digits:"}),
    path("name of the digits", "pi.txt 3 250 0", "Enter a name for the digits:\n", action="ordalis",
         goes_on={"": "Enter the destination path"}),
    path("folder of the digits", "pi.txt 3 250 0 Name", "Enter the destination path (SPACE for default):\n",
         action="ordalis"),
    number("compressed file", "few/pi2.qcd", 0, 5, action="ordalis", goes_on={"": "View a Range of Digits"}),
    digit("first compressed digit to view", "few/pi2.qcd 0", "Starting Digit: ", 1, 250),
    digit("first digit of an unknown number", "few/pi0.qcd 0", "Starting Digit: ", 1, BIGGEST),
    digit("digits to view of an unknown number", "few/pi0.qcd 0 1", "Digits to View: ", 1, 100000),
    digit("digits to view at the largest", f"few/pi0.qcd 0 {BIGGEST}", "Digits to View: ", 1, 1),
    digit("first digit to decompress", "few/pi2.qcd 3", "Starting Digit: ", 1, 250),
    digit("digits to decompress", "few/pi2.qcd 3 2", "Digits to Write: ", 1, 249),
    path("text file to write", "few/pi2.qcd 3 2 249", "Enter the path of the destination file:\n",
         action="ordalis"),
    digit("digits per file to recompress", "few/pi2.qcd 4", "Digits per file: ", 1000000, BIGGEST),
    digit("first file to recompress", "few/pi2.qcd 4 1m", "Start ID: ", 0, BIGGEST),
    digit("last file to recompress", "few/pi2.qcd 4 1m 0", "End   ID: ", 0, BIGGEST),
    path("folder of the files to recompress", "few/pi2.qcd 4 1m 0 0",
         "Enter the destination path (SPACE for default):\n", action="ordalis"),
    path("search folder", "few/pi2.qcd 5", "Enter directory:\n", action="ordalis", goes_on={
        "": "Search paths:\n    few/\n\n", "none": "Search paths:\n    few/\n    none/\n\n"}),
]


# What led to a prompt, by its name; every test begins with it.
REACHED = {}


def menus_of(output):
    """What the custom-compute menu showed, each time."""
    return [part[:part.find("option: ")] for part in output.split("Custom Compute a Constant\n")[1:]]


class Prompts(ProgramTest):
    def setUp(self):
        super().setUp()
        os.chdir(self.folder)
        write_digit_files(self.folder)

    def tearDown(self):
        os.chdir("/")
        super().tearDown()

    def answer(self, prompt, *answers):
        """The output up to the end of input, which ends the program and is told once."""
        with open("answers", "w", encoding="utf-8") as file:
            file.write("".join(answer + "\n" for answer in [*prompt.route, *answers]))
        with open("answers", "rb") as file:
            code, output = self.run_program(*([prompt.action] if prompt.action else []), stdin=file)
        self.assertEqual(code, 1, output)
        self.assertTrue(output.endswith(END_OF_INPUT), output)
        self.assertEqual(output.count(END_OF_INPUT), 1)
        self.assertNotIn("Begin Computation", output)
        return output

    def reach(self, prompt):
        """The output of a run whose input ends at the prompt."""
        if prompt.name not in REACHED:
            REACHED[prompt.name] = self.answer(prompt)
        return REACHED[prompt.name]

    def for_each(self, check, prompts=PROMPTS):
        for prompt in prompts:
            if prompt.when():
                with self.subTest(prompt=prompt.name):
                    check(prompt)

    def test_the_end_of_input_ends_the_program_at_once(self):
        def check(prompt):
            output = self.reach(prompt)
            # Between the prompt and the message is nothing but empty lines.
            self.assertTrue(output.removesuffix(END_OF_INPUT).rstrip("\n").endswith(prompt.text.rstrip("\n")), output)

        self.for_each(check)

    def test_what_makes_no_sense_is_asked_again(self):
        def check(prompt):
            before = self.reach(prompt).count(prompt.text)
            output = self.answer(prompt, *prompt.again)
            self.assertEqual(output.count(prompt.text), before + len(prompt.again), output)

        self.for_each(check, [prompt for prompt in PROMPTS if prompt.again])

    def test_what_is_refused_changes_nothing(self):
        def check(prompt):
            steps = []
            for answer in prompt.refused:
                steps += [answer, *prompt.route]
            output = self.answer(prompt, *steps[:-len(prompt.route)])
            self.assertEqual(output.count("Exception Encountered: "), len(prompt.refused), output)
            self.assertEqual(set(menus_of(output)), {menus_of(output)[0]}, output)

        self.for_each(check, [prompt for prompt in PROMPTS if prompt.refused])

    def test_what_is_taken_shows(self):
        def check(prompt):
            for answer, text in prompt.goes_on.items():
                if prompt.action == "validate":
                    self.validate(answer, text)
                else:
                    before = self.reach(prompt).removesuffix("\n\n" + END_OF_INPUT)
                    output = self.answer(prompt, answer)
                    self.assertTrue(output.startswith(before))
                    self.assertIn(text, output[len(before):])

        self.for_each(check, [prompt for prompt in PROMPTS if prompt.goes_on])

    def validate(self, answer, text):
        """The validator ends by itself."""
        with open("answers", "w", encoding="utf-8") as file:
            file.write(answer + "\n")
        with open("answers", "rb") as file:
            code, output = self.run_program("validate", stdin=file)
        self.assertEqual(code, 0, output)
        self.assertIn(text, output)


if __name__ == "__main__":
    unittest.main(verbosity=1)
