"""The memory of the real program beside the figures that it prints."""

import ctypes
import os
import re
import resource
import subprocess
import unittest

from kelvara_program import PROGRAM, ProgramTest
from terminal_session import ON_WINDOWS

UNITS = {"bytes": 1, "KiB": 2**10, "MiB": 2**20, "GiB": 2**30}
# The program itself, its threads, and what the digits pass through on their way to the file.
BESIDES = 64 * 2**20


def sanitized():
    """Whether the program carries a sanitizer, whose own memory is many times the program's."""
    with open(PROGRAM[-1], "rb") as file:
        content = file.read()
    return b"__asan_init" in content or b"__tsan_init" in content


def printed_bytes(label, output):
    """The size behind a label, and what its last printed digit may hide."""
    number, unit = re.search(re.escape(label) + r" *([0-9.,]+) (bytes|KiB|MiB|GiB)", output).groups()
    digit = 10.0 ** -len(number.partition(".")[2])
    return float(number.replace(",", "")) * UNITS[unit], digit * UNITS[unit]


class ResidentPeak(ProgramTest):
    def run_and_measure(self, *arguments):
        """Returns (text, the most physical memory that the program held, in bytes)."""
        path = os.path.join(self.folder, "output.txt")
        with open(path, "wb") as output:
            process = subprocess.Popen(
                PROGRAM + ["skip-warnings", *arguments, "-o", self.folder], stdin=subprocess.DEVNULL, stdout=output,
                stderr=subprocess.STDOUT)
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
        with open(path, encoding="utf-8") as output:
            text = output.read()
        self.assertEqual(process.returncode, 0, text)
        return text, usage.ru_maxrss * 1024

    @unittest.skipIf(sanitized(), "the sanitizer's memory is counted too")
    def test_stays_within_the_figures(self):
        for constant in ("pi", "e"):
            # Wine's pages are the same whatever the size, and each start takes a while.
            for digits in ("1m",) if ON_WINDOWS else ("1m", "10m"):
                for tasks in (1, 2, 16):
                    with self.subTest(constant=constant, digits=digits, tasks=tasks):
                        text, peak = self.run_and_measure("custom", constant, f"-dec:{digits}", f"-TD:{tasks}")
                        working, working_digit = printed_bytes("Reserving Working Memory...", text)
                        twiddles, twiddle_digit = printed_bytes("Constructing Twiddle Tables...", text)
                        slack = working + twiddles + BESIDES - peak
                        print(f"{constant} {digits} -TD:{tasks}: reserved {working / 2**20:.1f} MiB, tables "
                              f"{twiddles / 2**20:.1f} MiB, peak {peak / 2**20:.1f} MiB")
                        self.assertGreaterEqual(slack, -(working_digit + twiddle_digit))
                        # All that is reserved is filled before the computation begins.
                        self.assertGreaterEqual(peak, working - working_digit)


def give_up_locking():
    """For a child: no right and no limit that lets it lock a page."""
    drop_from_bounding_set, lock_memory = 24, 14
    ctypes.CDLL(None).prctl(drop_from_bounding_set, lock_memory, 0, 0, 0)  # refused where there is none anyway
    resource.setrlimit(resource.RLIMIT_MEMLOCK, (0, 0))


class Locking(ProgramTest):
    def run_without_the_right(self, *arguments):
        process = subprocess.run(
            PROGRAM + ["skip-warnings", "custom", "e", "-dec:1000", "-o", self.folder, *arguments],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, encoding="utf-8", check=True,
            preexec_fn=give_up_locking)
        return process.stdout

    WARNING = (f'\nUnable to acquire the permission, "{"SeLockMemoryPrivilege" if ON_WINDOWS else "CAP_IPC_LOCK"}".\n'
               "Large pages and page locking may not be possible.\n\n")

    def test_without_the_right_a_warning_precedes_the_reservation(self):
        for arguments in ((), ("-MA:mmap",), ("-MA:interleave",)):
            text = self.run_without_the_right(*arguments)
            self.assertEqual(text.count(self.WARNING), 1, text)
            self.assertIn(self.WARNING + "Reserving Working Memory...", text)
            # Neither a sanitizer nor Wine locks anything, and both say that they did.
            if not sanitized() and not ON_WINDOWS:
                self.assertNotIn("locked", text)

    def test_what_locks_nothing_warns_of_nothing(self):
        self.assertNotIn("Unable to acquire", self.run_without_the_right("-MA:malloc"))


if __name__ == "__main__":
    unittest.main()
