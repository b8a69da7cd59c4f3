"""How the real program behaves on a terminal: signals, colours that are not wanted, terminals that cannot."""

import os
import signal
import tempfile
import time
import unittest

from digit_files import compressed
from kelvara_program import ProgramTest
from terminal_session import Session


class Signals(unittest.TestCase):
    def assert_left_as_found(self, session, number):
        self.assertEqual(session.end(), 128 + number, session.text())
        # The last colour on screen is the terminal's own.
        self.assertEqual(session.seen.rfind(b"\x1b[0m"), session.seen.rfind(b"\x1b["), session.seen)
        self.assertNotIn(b"\x1b[?25l", session.seen)

    def wait_at_prompt(self, session):
        session.wait_for("option: ")
        while not session.coloured().endswith("<T>"):
            session.read(1)

    def test_the_interrupt_key_at_a_prompt(self):
        with Session() as session:
            self.wait_at_prompt(session)
            session.type("\x03")
            self.assert_left_as_found(session, signal.SIGINT)
            self.assertNotIn("There is no more input", session.text())

    def test_the_interrupt_key_at_other_prompts(self):
        for route, prompt in ((("1", "0"), "n = "), (("3",), "Digits: "), (("5",), "Path: "),
                              (("8", "2"), "Task Decomposition: ")):
            with self.subTest(prompt=prompt), Session("custom") as session:
                for answer in route:
                    session.answer("option: ", answer)
                session.wait_for(prompt)
                # An answer that nobody finished is no answer.
                session.type("12\x03")
                self.assert_left_as_found(session, signal.SIGINT)
                self.assertNotIn("There is no more input", session.text())

    def test_every_ending_signal_at_a_prompt(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGQUIT, signal.SIGHUP):
            with Session() as session:
                self.wait_at_prompt(session)
                os.kill(session.foreground(), number)
                self.assert_left_as_found(session, number)

    def test_without_a_colour_on_screen_nothing_is_written(self):
        with Session("colors:0") as session:
            session.wait_for("option: ")
            os.kill(session.foreground(), signal.SIGTERM)
            self.assertEqual(session.end(), 128 + signal.SIGTERM)
            self.assertNotIn(b"\x1b", session.seen)

    def test_in_a_pause_the_terminal_gets_its_lines_back(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            with Session("pause:1", "about") as session:
                session.wait_for("Press any key to continue . . . ")
                deadline = time.monotonic() + 20
                while session.lines_and_echo_are_on() and time.monotonic() < deadline:
                    time.sleep(0.01)
                self.assertFalse(session.lines_and_echo_are_on())
                os.kill(session.foreground(), number)
                while not session.lines_and_echo_are_on() and time.monotonic() < deadline:
                    time.sleep(0.01)
                self.assertTrue(session.lines_and_echo_are_on())
                self.assert_left_as_found(session, number)

    def test_in_the_middle_of_a_computation(self):
        with Session("custom", "pi", "-dec:200m", "-hex:0", "-o", "/tmp") as session:
            session.wait_for("Summing Series...")
            session.type("\x03")
            self.assert_left_as_found(session, signal.SIGINT)

    def test_in_the_middle_of_a_digit_file(self):
        digits = 10**12
        with tempfile.TemporaryDirectory() as folder:
            # All of its digits are 0, and none of them takes room on the disk.
            path = os.path.join(folder, "0.qcd")
            with open(path, "wb") as file:
                file.write(compressed("", 10, digits, 0, digits))
                file.truncate(file.tell() + (digits + 18) // 19 * 8)
            with Session("ordalis") as session:
                session.answer("extensions):\n", path)
                session.answer("option: ", "1")
                session.answer("Starting Digit: ", "1")
                session.answer("Ending Digit:   ", "1t")
                session.wait_for("1t\n\n")
                session.type("\x03")
                self.assert_left_as_found(session, signal.SIGINT)

    def test_in_the_middle_of_a_stress_test(self):
        with Session("stress", "-M:16M", "-T:2", "-D:600", "VST") as session:
            # The line goes on to show that the test does.
            session.wait_for("Running Test Vector Transform  ")
            session.wait_for(" of 600 seconds, ")
            session.wait_for(" of 600 seconds, ")
            session.type("\x03")
            self.assert_left_as_found(session, signal.SIGINT)

    def test_an_ignored_interrupt_stays_ignored(self):
        before = signal.signal(signal.SIGINT, signal.SIG_IGN)
        try:
            session = Session()
        finally:
            signal.signal(signal.SIGINT, before)
        with session:
            self.wait_at_prompt(session)
            session.type("\x03")
            session.answer("", "7")
            self.assertEqual(session.end(), 0)
            self.assertIn("\nDisclaimer:\n", session.text())


class Colours(ProgramTest):
    def test_no_color_turns_colours_off(self):
        with Session("about", environment={"NO_COLOR": "1"}) as session:
            self.assertEqual(session.end(), 0)
            self.assertNotIn(b"\x1b", session.seen)
            self.assertIn("\nDisclaimer:\n", session.text())

    def test_an_empty_no_color_means_nothing(self):
        with Session("about", environment={"NO_COLOR": ""}) as session:
            self.assertEqual(session.end(), 0)
            self.assertIn(b"\x1b[0;92mDisclaimer:", session.seen)

    def test_the_flag_outweighs_no_color(self):
        with Session("colors:1", "about", environment={"NO_COLOR": "1"}) as session:
            self.assertEqual(session.end(), 0)
            self.assertIn(b"\x1b[0;92mDisclaimer:", session.seen)

    def test_a_dumb_terminal_gets_plain_text(self):
        for leader in (False, True):
            with Session("custom", "pi", "-dec:1000", "-hex:0", "-o", self.folder, environment={"TERM": "dumb"},
                         leader=leader) as session:
                self.assertEqual(session.end(), 0)
                self.assertNotIn(b"\x1b", session.seen)
                self.assertNotIn(b"\b", session.seen)
                self.assertIn("2164201989  :  1,000\n", session.text())

    def test_a_pipe_gets_plain_text(self):
        code, output = self.run_program("colors:1", "about")
        self.assertEqual(code, 0)
        self.assertNotIn("\x1b", output)
        self.assertIn("\nDisclaimer:\n", output)


class EndOfInput(ProgramTest):
    def test_a_line_without_its_end_is_an_answer(self):
        with open(self.folder + "/typed", "wb") as file:
            file.write(b"7")
        with open(self.folder + "/typed", "rb") as stdin:
            code, output = self.run_program(stdin=stdin)
        self.assertEqual(code, 0)
        self.assertIn("\nDisclaimer:\n", output)

    def test_a_closed_input_is_at_its_end(self):
        code, output = self.run_program(stdin=None, preexec_fn=lambda: os.close(0))
        self.assertEqual(code, 1)
        self.assertIn("There is no more input: the program ends here.", output)


if __name__ == "__main__":
    unittest.main(verbosity=1)
