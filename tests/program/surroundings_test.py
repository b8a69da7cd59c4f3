"""The real program in narrow windows, in pipes, and with one of its streams somewhere else than the other."""

import os
import pty
import re
import select
import subprocess
import time
import unittest

from kelvara_program import PROGRAM, ProgramTest
from terminal_session import Session

# Long enough to rewrite its progress, and one that is over at once.
COMPUTATION = ("custom", "pi", "-dec:300k", "-hex:0", "-TD:1", "-o")
SHORT_COMPUTATION = ("custom", "pi", "-dec:1000", "-hex:0", "-TD:1", "-o")


def lines_of_a_window(screen, columns):
    """What stands in a window of so many columns: long lines go on in the next row, backspaces end at the first column.

    Rows that a line goes on in are joined again.
    """
    rows = [[]]
    goes_on = [False]    # whether a row is the rest of the one above
    row = column = 0
    for character in re.sub("\x1b\\[[0-9;]*m|\r", "", screen):
        if character == "\n":
            row, column = row + 1, 0
        elif character == "\b":
            # Behind the last column the cursor stands on it.
            column = max(min(column, columns - 1) - 1, 0)
        else:
            if column == columns:
                row, column = row + 1, 0
                if row == len(rows):
                    rows.append([])
                    goes_on.append(True)
            rows[row] += [" "] * (column + 1 - len(rows[row]))
            rows[row][column] = character
            column += 1
        while row >= len(rows):
            rows.append([])
            goes_on.append(False)
    lines = []
    for text, joined in zip(rows, goes_on):
        if joined:
            lines[-1] += "".join(text)
        else:
            lines.append("".join(text))
    return [line.rstrip() for line in lines]


class NarrowWindows(ProgramTest):
    def setUp(self):
        super().setUp()
        os.chdir(self.folder)

    def tearDown(self):
        os.chdir("/")
        super().tearDown()

    def steps(self, lines):
        """The lines from the computation's beginning to its last step, without what differs from run to run."""
        start = lines.index("Begin Computation:")
        end = max(number for number, line in enumerate(lines) if line.startswith("Time:"))
        return [re.sub("[0-9.]+ ", "# ", line) for line in lines[start:end + 1]]

    def test_a_computation_leaves_the_same_lines(self):
        code, output = self.run_program(*COMPUTATION, self.folder)
        self.assertEqual(code, 0, output)
        expected = self.steps([line.rstrip() for line in output.split("\n")])
        self.assertGreater(len(expected), 10)
        labels = False
        for columns in (20, 40, 60):
            with self.subTest(columns=columns), Session(*COMPUTATION, self.folder, columns=columns) as session:
                self.assertEqual(session.end(), 0)
                self.assertEqual(self.steps(lines_of_a_window(session.seen.decode(), columns)), expected)
                labels = labels or b"\b" in session.seen
        self.assertTrue(labels, "nothing was rewritten: the computation is too short for this test")

    def test_menus_lead_where_they_lead_elsewhere(self):
        with Session(columns=40, rows=10) as session:
            session.answer("option: ", "8")
            session.answer("option: ", "3")
            for answer in (("option: ", "3"), ("Digits: ", "300"), ("option: ", "5"), ("Path: ", self.folder)):
                session.answer(*answer)
            session.answer("option: ", "0")
            self.assertEqual(session.end(), 0)
            self.assertIn("  3     Decimal Digits:       300\n", session.text())
            self.assertIn("Pi - Dec - Chudnovsky.txt", os.listdir(self.folder))

    def test_a_window_of_no_size(self):
        with Session(*SHORT_COMPUTATION, self.folder, columns=0, rows=0) as session:
            self.assertEqual(session.end(), 0)
            self.assertEqual(self.steps(lines_of_a_window(session.seen.decode(), 80))[0], "Begin Computation:")


class PlainTerminals(unittest.TestCase):
    def test_menus_without_colours(self):
        for environment in ({"TERM": "dumb"}, {"NO_COLOR": "1"}, {"TERM": "dumb", "NO_COLOR": "1"}):
            for leader in (False, True):
                with self.subTest(environment=environment, leader=leader), \
                        Session(environment=environment, leader=leader) as session:
                    session.answer("option: ", "6")
                    session.answer("option: ", "2")
                    self.assertEqual(session.end(), 0)
                    # A window of one's own is asked for its cursor, in any colour.
                    self.assertEqual(re.sub(b"\x1b\\[6n|\x1b\\[8;25;80t", b"", session.seen).count(b"\x1b"), 0)
                    self.assertIn("  0         Benchmark Pi  (all in ram)\n", session.text())


class SilentStreams(ProgramTest):
    """An input that never says anything: the program waits where it asks, and nowhere else."""

    def run_with_silent_input(self, *arguments):
        reader, writer = os.pipe()
        try:
            return self.run_program(*arguments, stdin=reader, skip_warnings=False)
        finally:
            os.close(reader)
            os.close(writer)

    def test_nobody_waits_for_a_key(self):
        for arguments, code in ((("about",), 0), (("pause:1", "about"), 0), (("pause:1", "nonsense"), 1),
                                (("pause:1", *SHORT_COMPUTATION, self.folder), 0)):
            with self.subTest(arguments=arguments):
                ended, output = self.run_with_silent_input(*arguments)
                self.assertEqual(ended, code, output)
                self.assertNotIn("Press any key", output)
                self.assertNotIn("\x1b", output)
                self.assertNotIn("\b", output)

    def test_the_keyboard_behind_a_pipe(self):
        """Typed on a terminal, shown in a pipe: plain text, prompts included, and no pause."""
        master, slave = pty.openpty()
        process = subprocess.Popen(PROGRAM + ["pause:1"], stdin=slave, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        os.close(slave)
        output = b""
        while not output.endswith(b"option: "):
            output += os.read(process.stdout.fileno(), 65536)
        os.write(master, b"7\n")
        output += process.communicate(timeout=60)[0]
        os.close(master)
        self.assertEqual(process.returncode, 0)
        self.assertNotIn(b"\x1b", output)
        self.assertIn(b"\nDisclaimer:\n", output)
        self.assertNotIn(b"Press any key", output)

    def test_a_screen_without_a_keyboard(self):
        """Shown on a terminal, with the input elsewhere: colours, and no pause."""
        master, slave = pty.openpty()
        process = subprocess.Popen(PROGRAM + ["pause:1", "about"], stdin=subprocess.DEVNULL, stdout=slave,
                                   env={**os.environ, "TERM": "xterm", "NO_COLOR": ""})
        os.close(slave)
        screen = b""
        deadline = time.monotonic() + 60
        while time.monotonic() < deadline and select.select([master], [], [], 60)[0]:
            try:
                screen += os.read(master, 65536)
            except OSError:
                break
        os.close(master)
        self.assertEqual(process.wait(60), 0)
        self.assertIn(b"\x1b[0;92mDisclaimer:", screen)
        self.assertNotIn(b"Press any key", screen)
        self.assertEqual(screen.rfind(b"\x1b[0m"), screen.rfind(b"\x1b["))


if __name__ == "__main__":
    unittest.main(verbosity=1)
