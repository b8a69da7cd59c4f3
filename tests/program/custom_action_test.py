"""The "custom" action of the real program: what it computes, and what it refuses."""

import hashlib
import os
import re
import resource
import signal
import subprocess
import unittest

from kelvara_program import ProgramTest
from terminal_session import ON_WINDOWS, Session


def reference(constant, digits):
    """(decimal SHA-256, hexadecimal SHA-256) of a constant's digit texts."""
    with open(os.environ["KELVARA_TEST_DATA"] + "/constants.csv", encoding="utf-8") as rows:
        for row in rows:
            fields = row.strip().split(",")
            if fields[0] == constant and fields[1] == str(digits):
                return fields[4], fields[8]
    raise KeyError((constant, digits))


def sha256_of_file(path):
    with open(path, "rb") as file:
        return hashlib.sha256(file.read()).hexdigest()


class Computing(ProgramTest):
    def test_writes_both_digit_files(self):
        for constant, name, algorithm in (("pi", "Pi", "Chudnovsky"), ("e", "e", "exp(1)")):
            code, output = self.run_program("custom", constant, "-dec:1000", "-o", self.folder)
            self.assertEqual(code, 0, output)
            decimal, hexadecimal = reference(constant, 1000)
            self.assertEqual(sha256_of_file(f"{self.folder}/{name} - Dec - {algorithm}.txt"), decimal)
            self.assertEqual(sha256_of_file(f"{self.folder}/{name} - Hex - {algorithm}.txt"), hexadecimal)

    def test_every_option_reaches_the_computation(self):
        code, output = self.run_program(
            "custom", "pi", "-algorithm:ramanujan", "-hex:0", "-dec:10k", "-mode:ram", "-MA:malloc", "-PF:none",
            "-TD:3", "-C:0", "-o", self.folder)
        self.assertEqual(code, 0, output)
        self.assertIn("Ramanujan's Formula", output)
        self.assertRegex(output, r"Hexadecimal Digits: +Disabled")
        self.assertRegex(output, r"Decimal Digits: +10,000")
        self.assertIn("None (No Multi-threading)  ->  3 / ?", output)
        self.assertEqual(sorted(os.listdir(self.folder)), ["Pi - Dec - Ramanujan.txt"])
        self.assertEqual(sha256_of_file(f"{self.folder}/Pi - Dec - Ramanujan.txt"), reference("pi", 10000)[0])

    def test_every_framework(self):
        for key, summary in (("none", "None (No Multi-threading)  ->  5 / ?"),
                             ("cppasync", "C++ std::async()  ->  5 / ?  (async only)"),
                             ("spawn", "Thread Spawn (1 Thread/Task)  ->  5 / ?"),
                             ("pushpool", "Push Pool  ->  5 / ?  (randomization on)")):
            code, output = self.run_program("custom", "pi", "-dec:10k", "-hex:0", f"-PF:{key}", "-TD:5", "-o",
                                            self.folder)
            self.assertEqual(code, 0, output)
            self.assertRegex(output, r"Multi-Threading: +" + re.escape(summary) + "\n")
            self.assertEqual(sha256_of_file(f"{self.folder}/Pi - Dec - Chudnovsky.txt"), reference("pi", 10000)[0])

    @unittest.skipIf(ON_WINDOWS, "there it is one of the frameworks")
    def test_the_thread_pool_of_windows(self):
        self.assert_refused("Invalid Parallel Framework: winpool", "custom", "pi", "-PF:winpool")

    def test_a_chosen_hexadecimal_count_stays_whatever_the_order(self):
        for arguments in (("-hex:200", "-dec:100"), ("-dec:100", "-hex:200")):
            code, output = self.run_program("custom", "pi", *arguments, "-o", self.folder)
            self.assertEqual(code, 0, output)
            with open(f"{self.folder}/Pi - Hex - Chudnovsky.txt", encoding="ascii") as file:
                digits = file.read()
            self.assertEqual(len(digits), 202)
            self.assertTrue(digits.startswith("3.243f6a8885a308d313198a2e03707344a4093822299f31d0"))

    def test_an_output_path_may_hold_a_colon(self):
        folder = os.path.join(self.folder, "a:b")
        os.mkdir(folder)
        code, output = self.run_program("custom", "e", "-dec:100", "-o", folder)
        self.assertEqual(code, 0, output)
        self.assertIn("e - Dec - exp(1).txt", os.listdir(folder))

    def test_the_report(self):
        _, output = self.run_program("custom", "pi", "-dec:1000", "-hex:0", "-o", self.folder)
        for text in ("Constant:", "Algorithm:", "Multi-Threading:", "Computation Mode:", "Ram Only", "Start Time:",
                     "Reserving Working Memory...", "Constructing Twiddle Tables...", "Begin Computation:\n",
                     "Summing Series...  ", "Division...", "InvSqrt...", "Final Multiply...", "Base Converting:",
                     "Writing Decimal Digits:", "Verifying Base Conversion...", "End Time:",
                     "Total Computation Time:     ", "Start-to-End Wall Time:     ", "CPU Utilization:        ",
                     "Multi-core Efficiency:  ", "Last Digits:  \n"):
            self.assertIn(text, output)
        self.assertIn("2164201989  :  1,000\n", output)
        self.assert_machine_lines(output[output.index("Binary Hash:"):])
        self.assertIn(self.expected_hash("pi", 1000), output)
        self.assertNotIn("\x1b", output)

    # The machine's lines follow the report, an empty line before and after them.
    def assert_machine_lines(self, end_of_output):
        lines = end_of_output.split("\n")
        first = next(i for i, line in enumerate(lines) if line.startswith("Version:"))
        self.assertEqual(lines[first - 1], "")
        labels = [line[:22].rstrip() for line in lines[first:first + 6]]
        self.assertEqual(labels[:5], ["Version:", "Processor(s):", "Topology:", "Physical Memory:", "Usable Memory:"])
        self.assertIn(labels[5], ("CPU Base Frequency:", " CPU BaseFrequency:"))
        self.assertEqual(lines[first + 6], "")
        self.assertNotIn("Serial", end_of_output)

    @staticmethod
    def expected_hash(constant, digits):
        with open(os.environ["KELVARA_TEST_DATA"] + "/constants.csv", encoding="utf-8") as rows:
            for row in rows:
                fields = row.split(",")
                if fields[0] == constant and fields[1] == str(digits):
                    return fields[2]
        raise KeyError(constant)


class Refusing(ProgramTest):
    def test_unknown_words(self):
        self.assert_refused("Invalid Parameter: nonsense", "nonsense:1", exit_code=1)
        self.assert_refused("Invalid Parameter: -nonsense", "custom", "pi", "-nonsense:1", exit_code=1)
        self.assert_refused("Invalid Parameter: skip-warnings", "custom", "pi", "skip-warnings", exit_code=1)
        self.assert_refused("Invalid Command: -mode:disk", "custom", "pi", "-mode:disk")
        self.assert_refused("Invalid Constant: tau", "custom", "tau")
        self.assert_refused("Invalid Algorithm: machin", "custom", "pi", "-algorithm:machin")
        self.assert_refused("Invalid Memory Allocator: heap", "custom", "pi", "-MA:heap")
        self.assert_refused("Invalid Parallel Framework: openmp", "custom", "pi", "-PF:openmp")
        self.assert_refused("Task decomposition must be between 1 and 65,536.", "custom", "pi", "-TD:0")
        self.assert_refused("Task decomposition must be between 1 and 65,536.", "custom", "pi", "-TD:65537")

    def test_a_missing_path(self):
        self.assert_refused("Expected more parameters.", "custom", "pi", "-o")

    def test_compression_of_small_results(self):
        self.assert_refused("Too few digits to compress.", "custom", "pi", "-dec:50000", "-C:1m")
        self.assert_refused("Too few digits for file.", "custom", "pi", "-dec:2m", "-C:1000")

    def test_what_is_not_there_yet_says_so(self):
        self.assert_refused("Swap Mode is not available in this build yet.", "custom", "pi", "-mode:swap")

    def test_more_than_the_memory_holds(self):
        for text in ("Large heap allocation failed.", "Failed Allocation: "):
            self.assert_refused(text, "custom", "pi", "-dec:1t", "-o", self.folder, exit_code=1)

    def test_a_missing_output_folder(self):
        self.assert_refused("The folder for the digit files does not exist.", "custom", "pi", "-dec:100", "-o",
                            self.folder + "/missing")

    @unittest.skipIf(os.geteuid() == 0, "root may write everywhere")
    def test_a_folder_without_write_permission(self):
        os.chmod(self.folder, 0o500)
        self.assert_refused("The folder for the digit files cannot be written.", "custom", "pi", "-dec:100", "-o",
                            self.folder)
        os.chmod(self.folder, 0o700)

    def test_a_folder_that_no_file_can_be_created_in(self):
        self.assert_refused("The folder for the digit files cannot be written.", "custom", "pi", "-dec:100", "-o",
                            "/proc/self")


class FailingDisk(ProgramTest):
    def test_digits_that_do_not_fit_are_reported_with_the_result(self):
        def limit_file_size():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))

        code, output = self.run_program("custom", "pi", "-dec:20000", "-o", self.folder, preexec_fn=limit_file_size)
        self.assertEqual(code, 0, output)
        self.assertIn("The digits cannot be written to the file; the computation goes on without it.", output)
        self.assertIn("Total Computation Time:", output)
        self.assertIn("Last Digits:", output)
        self.assertIn("Incomplete Digit File: " + self.folder, output)
        self.assertIn("FileException", output)
        self.assertIn("Error writing to file.", output)

    def test_a_full_disk_is_named(self):
        mounted = os.path.join(self.folder, "full")
        os.mkdir(mounted)
        mount = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=16k", "none", mounted], check=False,
                               stderr=subprocess.DEVNULL)
        if mount.returncode != 0:
            self.skipTest("no small file system can be mounted here")
        try:
            code, output = self.run_program("custom", "pi", "-dec:50000", "-hex:0", "-o", mounted)
            self.assertEqual(code, 0, output)
            self.assertIn("Incomplete Digit File", output)
            self.assertRegex(output, r"Error Code: +112")
            self.assertIn("Binary Hash:", output)
        finally:
            subprocess.run(["umount", mounted], check=True)


class Terminal(ProgramTest):
    def test_colours_and_text_on_a_terminal(self):
        with Session("custom", "pi", "-dec:1000", "-o", self.folder) as session:
            self.assertEqual(session.end(), 0)
            self.assertTrue(session.shows("Constant:   <G>Pi<white>\nAlgorithm:  <Y>Chudnovsky Formula<white>\n"),
                            session.coloured())
            self.assertIn("2164201989  :  1,000\n", session.text())

    def test_colours_can_be_turned_off(self):
        with Session("colors:0", "custom", "pi", "-dec:1000", "-o", self.folder) as session:
            self.assertEqual(session.end(), 0)
            self.assertEqual(session.coloured(), session.text())
            self.assertIn("Total Computation Time:", session.text())

    def test_garbage_from_the_keyboard_changes_nothing(self):
        with Session("pause:1", "custom", "pi", "-dec:1000", "-o", self.folder) as session:
            os.write(session.master, bytes(range(1, 3)) + b"\xff\xfe\x00garbage\n" * 20)
            session.wait_for("Press any key to continue . . . ")
            if ON_WINDOWS:
                # What was typed before the console opened is lost.
                session.type(" ")
            self.assertEqual(session.end(), 0)
            self.assertIn("Total Computation Time:", session.text())

    def test_garbage_from_a_pipe_changes_nothing(self):
        with open(f"{self.folder}/garbage", "wb") as file:
            file.write(os.urandom(100000))
        with open(f"{self.folder}/garbage", "rb") as stdin:
            code, output = self.run_program("pause:1", "custom", "pi", "-dec:1000", "-o", self.folder, stdin=stdin,
                                            skip_warnings=False)
        self.assertEqual(code, 0, output)
        self.assertIn("Total Computation Time:", output)


if __name__ == "__main__":
    unittest.main(verbosity=1)
