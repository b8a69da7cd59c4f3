"""Values that make no sense, for every option of every action of the real program.

The rows of `OPTIONS` are all there is to add for one option more.
"""

import unittest

from kelvara_program import ProgramTest

HUGE = "99999999999999999999999"
LEAST = "Computation size must be at least 100 decimal digits."
MOST = "Computation size cannot be larger than 1,000,000,000,000,050 decimal digits."
TASKS = "Task decomposition must be between 1 and 65,536."
# The options behind it are looked at: the last one of every command line is one that no action knows.
ACCEPTED = "\nInvalid Parameter: -end\n"
PI = ("custom", "pi")

# A command line up to the option, the option, and what it answers without a value, and with each of these values.
OPTIONS = [
    (PI, "-dec", LEAST, {"": LEAST, "x": LEAST, "-1000": LEAST, "0": LEAST, "99": LEAST, "1.5m": LEAST, " 1000": LEAST,
                         "100": ACCEPTED, "2000t": MOST, HUGE: MOST, "18446744073709551716": MOST}),
    # No digits turn the hexadecimal output off.
    (PI, "-hex", ACCEPTED, {"": ACCEPTED, "x": ACCEPTED, "-1000": ACCEPTED, "0": ACCEPTED, "99": LEAST, "1x": LEAST,
                            "2000T": MOST, HUGE: MOST}),
    (PI, "-TD", TASKS, {"": TASKS, "x": TASKS, "-1": TASKS, "0": TASKS, "65537": TASKS, HUGE: TASKS,
                        "18446744073709551617": TASKS, "65536": ACCEPTED, "8x": ACCEPTED, "1k": ACCEPTED}),
    (PI, "-C", ACCEPTED, {"": ACCEPTED, "x": ACCEPTED, "0": ACCEPTED, "-1": "Too few digits to compress.",
                          "1m": "Too few digits to compress.", HUGE: "Too few digits to compress."}),
    ((*PI, "-dec:2m"), "-C", ACCEPTED, {"999999": "Too few digits for file.", "1": "Too few digits for file."}),
    (PI, "-mode", "Invalid Command: -mode\n", {
        value: f"Invalid Command: -mode:{value}\n" for value in ("", "Ram", "ram:swap", " ram", "1", HUGE)}),
    (PI, "-algorithm", "Invalid Algorithm: \n", {
        value: f"Invalid Algorithm: {value}\n" for value in ("", "2", "-1", "Chudnovsky", HUGE)}),
    (PI, "-MA", "Invalid Memory Allocator: \n", {
        value: f"Invalid Memory Allocator: {value}\n" for value in ("", "0", "Malloc", "malloc ", HUGE)}),
    (PI, "-PF", "Invalid Parallel Framework: \n", {
        value: f"Invalid Parallel Framework: {value}\n" for value in ("", "0", "None", "none ", HUGE)}),
    (PI, "-M", "Option -M is not supported for this mode.", {
        value: "Option -M is not supported for this mode." for value in ("", "4G", HUGE)}),
    (PI, "-minIO", "Option -minIO is not supported for this mode.", {
        value: "Option -minIO is not supported for this mode." for value in ("", "1M", HUGE)}),
    (PI, "-swap", "Option -swap is not supported for this mode.", {
        value: "Option -swap is not supported for this mode." for value in ("", "x", HUGE)}),
    ((*PI, "-mode:swap"), "-M", ACCEPTED, {value: ACCEPTED for value in ("", "x", "-1", "0", "4G", HUGE)}),
    ((*PI, "-mode:swap"), "-minIO", ACCEPTED, {value: ACCEPTED for value in ("", "x", "-1", "0", "1M", HUGE)}),
    ((*PI, "-mode:swap"), "-swap", "Expected more parameters.\n", {
        "": "Expected more parameters.\n", "x": "Unrecognized mode\n", "RAID0": "Unrecognized mode\n",
        HUGE: "Unrecognized mode\n", "raid0": "Expected more parameters.\n", "raid3": "Expected more parameters.\n"}),
    # What follows is the path, whatever it is.
    (PI, "-o", "The folder for the digit files does not exist.", {
        value: "The folder for the digit files does not exist." for value in ("", "x")}),
    (("custom",), "pi", ACCEPTED, {"": ACCEPTED, "7": ACCEPTED, "x": ACCEPTED, HUGE: ACCEPTED}),
    (("custom",), "sqrt", "0 is out of range.", {
        "": "0 is out of range.", "x": "0 is out of range.", "-2": "0 is out of range.", "1": "1 is out of range.",
        "16": "16 is a perfect square.", "18446744073709551615": ACCEPTED,
        "18446744073709551616": "18446744073709551616 is out of range.", HUGE: HUGE + " is out of range."}),
    (("custom",), "arccoth", "0 is out of range.", {
        "1": "1 is out of range.", "4294967296": "4294967296 is out of range.", HUGE: HUGE + " is out of range."}),
    (("custom",), "log", "0 is out of range.", {
        "1": "1 is out of range.", "2147483648": "2147483648 is out of range.", HUGE: HUGE + " is out of range."}),
    (("custom",), "tau", "Invalid Constant: tau\n", {"": "Invalid Constant: tau\n", "1": "Invalid Constant: tau\n"}),
    (("bench",), "-MA", "Invalid Memory Allocator: \n", {"": "Invalid Memory Allocator: \n", "malloc": ACCEPTED}),
    (("bench",), "-PF", "Invalid Parallel Framework: \n", {"": "Invalid Parallel Framework: \n", "none": ACCEPTED}),
    # The number of tasks stands behind what follows, which has none here.
    (("bench",), "-TD", TASKS, {"": TASKS, "8": TASKS, HUGE: TASKS}),
    (("bench", "-TD"), "25m", TASKS, {"": TASKS, "x": TASKS, "-1": TASKS, "0": TASKS, "65537": TASKS, HUGE: TASKS,
                                     "65536": ACCEPTED}),
    (("bench",), "25m", ACCEPTED, {"": ACCEPTED, "x": ACCEPTED, HUGE: ACCEPTED}),
    (("stress",), "-M", ACCEPTED, {value: ACCEPTED for value in ("", "x", "-1", "0", "1.5G", "7E", HUGE, HUGE + "E")}),
    (("stress",), "-T", ACCEPTED, {value: ACCEPTED for value in ("", "x", "-1", "0", "8x", "65537", HUGE)}),
    (("stress",), "-D", ACCEPTED, {value: ACCEPTED for value in ("", "x", "-1", "0", "1.5", HUGE)}),
    (("stress",), "VST", ACCEPTED, {"": ACCEPTED, "x": ACCEPTED, HUGE: ACCEPTED}),
    (("stress", "VST", "-T:2"), "BKT", ACCEPTED, {"": ACCEPTED}),
    (("stress",), "vst", "Invalid Command: vst\n", {"": "Invalid Command: vst:\n", "8": "Invalid Command: vst:8\n"}),
    (("stress",), "C17", "Invalid Command: C17\n", {"": "Invalid Command: C17:\n"}),
    (("bench",), "26m", "Invalid Command: 26m\n", {"": "Invalid Command: 26m:\n", "8": "Invalid Command: 26m:8\n"}),
]

# Leading flags take anything; what stands behind them is still found.
FLAGS = ["pause", "colors", "PII", "height", "skip-warnings"]
FLAG_VALUES = ["", ":", ":x", ":-1", ":0", ":1:1", ":999999t", ":" + HUGE, ":-" + HUGE]

# Actions that this build does not have say so, whatever their options are.
MISSING = [
    ("benchio", "The I/O performance analysis is not available in this build yet.",
     ("-M", "-M:x", "-TD:0", "-TD:" + HUGE, "-minIO", "-swap", "nonsense")),
]


class Options(ProgramTest):
    def assert_answers(self, text, *arguments):
        code, output = self.run_program(*arguments)
        self.assertIn(text, output)
        self.assertNotIn("Begin Computation", output)
        self.assertNotIn("Starting Continuous", output)
        self.assertEqual(code, 1 if text.strip().startswith("Invalid Parameter") else 0, output)

    def test_every_value(self):
        for before, option, without, values in OPTIONS:
            cases = [(option, without)] + [(f"{option}:{value}", text) for value, text in values.items()]
            for argument, text in cases:
                with self.subTest(command=(*before, argument)):
                    self.assert_answers(text, *before, argument, "-end")

    def test_every_value_of_a_leading_flag(self):
        for flag in FLAGS:
            with self.subTest(flag=flag):
                self.assert_answers(ACCEPTED, *(flag + value for value in FLAG_VALUES), "-end")

    def test_what_is_missing_says_so(self):
        for action, text, options in MISSING:
            for option in options:
                with self.subTest(command=(action, option)):
                    self.assert_answers(text, action, option)


if __name__ == "__main__":
    unittest.main(verbosity=1)
