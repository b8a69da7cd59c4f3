"""The component stress tester of the real program: short runs, which somebody has to end."""

import os
import subprocess
import unittest

from kelvara_program import PROGRAM, ProgramTest
from terminal_session import Session

NAMES = {
    "BKT": "Basecase + Karatsuba", "FFT": "Floating-Point FFT", "N32": "Classic NTT (32-bit)",
    "N64": "Classic NTT (64-bit)", "HNT": "Hybrid NTT", "VST": "Vector Transform",
}


class Stress(ProgramTest):
    def run_until(self, text, *arguments):
        """The output of a run that is ended once it has shown `text`."""
        lines = []
        process = subprocess.Popen(
            PROGRAM + ["skip-warnings", "stress", *arguments], stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        try:
            for line in process.stdout:
                lines.append(line.decode("utf-8", "replace").replace("\r\n", "\n"))
                if text in lines[-1]:
                    return "".join(lines)
        finally:
            process.kill()
            process.stdout.close()
            process.wait()
        raise AssertionError(f"{text!r} did not appear in\n{''.join(lines)}")

    def test_every_test_in_turn(self):
        output = self.run_until("Iteration 3  Total", "-D:0", "-M:8M", "-T:2")
        at = 0
        for _ in range(2):
            for name in NAMES.values():
                for line in (f"Preparing {name} Test...\n", f"Running Test {name}\n", f"{name} Test: Passed  Test Time: "):
                    at = output.find(line, at)
                    self.assertGreater(at, 0, line + output)
        self.assertNotIn("Checksum Mismatch", output)
        self.assertNotIn("\b", output)

    def test_one_test_for_its_time(self):
        output = self.run_until("Iteration 2  Total", "-D:1", "-M:64M", "-T:2", "VST")
        self.assertIn("\nReserving Working Memory...     64.0 MiB", output)
        self.assertRegex(output, r"\nVector Transform Test: Passed  Test Time: [1-9][0-9.]* seconds")
        self.assertRegex(output, r"\n    [1-9][0-9,]* products? of [0-9,]+ words on 2 threads\n")
        self.assertRegex(output, r"\n    [0-9.]+(?: \w+)? words/s, at least [0-9.]+(?: \w+)? bytes/s moved\n")
        self.assertRegex(output, r"\n    [0-9.]+(?: \w+)? floating-point operations/s \(estimated\), [0-9.]+% of the peak\n")
        self.assertEqual(output.count("Running Test"), 1)

    def test_more_threads_than_processors(self):
        threads = str(2 * (os.cpu_count() or 1) + 1)
        output = self.run_until("Iteration 2  Total", "-D:0", "-M:16M", "-T:" + threads, "BKT", "N32")
        self.assertEqual(output.count(f" on {threads} threads\n"), 2, output)
        self.assertNotIn("Failed to set core affinity", output)

    def test_tiny_memory(self):
        for memory in ("0", "1", "100"):
            code, output = self.run_program("stress", "-M:" + memory, "-T:1", "-D:1")
            self.assertEqual(code, 0, output)
            for name in NAMES.values():
                self.assertIn(f"\n{name} Test: Insufficient memory to run this test.\n", output)
            self.assertIn("\nNothing was run. Stopping test...\n", output)
            self.assertNotIn("Iteration 2", output)

    def test_more_memory_than_there_is(self):
        code, output = self.run_program("stress", "-M:7E", "-T:1", "-D:1", "VST")
        self.assertEqual(code, 1, output)
        self.assertIn("\nLarge heap allocation failed.\n", output)
        self.assertIn("\nFailed Allocation: 7.00 EiB\n", output)

    def test_a_terminal_shows_that_it_goes_on(self):
        with Session("stress", "-M:16M", "-T:2", "-D:3", "BKT") as session:
            session.wait_for("Running Test Basecase + Karatsuba  ")
            session.wait_for(" of 3 seconds, ")
            session.wait_for("Basecase + Karatsuba Test: Passed  Test Time: ")
            session.wait_for("Iteration 2")


if __name__ == "__main__":
    unittest.main(verbosity=1)
