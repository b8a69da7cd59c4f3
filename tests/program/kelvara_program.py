"""Runs the real program, through pipes, for the tests in this folder; terminal_session.py has the terminal."""

import os
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["KELVARA_PROGRAM"].split()

# Computations leave a validation file where they are started.
_started_from = tempfile.TemporaryDirectory(prefix="kelvara-program-")
os.chdir(_started_from.name)


class ProgramTest(unittest.TestCase):
    """A test with a folder of its own for digit files."""

    def setUp(self):
        self._temporary = tempfile.TemporaryDirectory(prefix="kelvara-program-")
        self.folder = self._temporary.name

    def tearDown(self):
        self._temporary.cleanup()

    def run_program(self, *arguments, stdin=subprocess.DEVNULL, skip_warnings=True, **options):
        """Runs with output to a pipe. Returns (exit code, text)."""
        if skip_warnings:
            arguments = ("skip-warnings",) + arguments
        done = subprocess.run(
            PROGRAM + list(arguments), stdin=stdin, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
            timeout=300, check=False, **options)
        return done.returncode, done.stdout.decode("utf-8", "replace").replace("\r\n", "\n")

    def assert_refused(self, text, *arguments, exit_code=0):
        """The program answers `text` and computes nothing."""
        code, output = self.run_program(*arguments)
        self.assertIn(text, output)
        self.assertNotIn("Begin Computation", output)
        self.assertEqual(code, exit_code, output)
