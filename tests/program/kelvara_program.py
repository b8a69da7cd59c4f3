"""Runs the real program, through pipes or through a pseudo-terminal, for the tests in this folder."""

import os
import pty
import re
import select
import subprocess
import tempfile
import time
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


def run_in_terminal(arguments, keys=b"", seconds=120):
    """Runs on a pseudo-terminal, typing `keys` as soon as it starts. Returns (exit code, screen bytes)."""
    pid, master = pty.fork()
    if pid == 0:
        os.execvp(PROGRAM[0], PROGRAM + list(arguments))
    if keys:
        os.write(master, keys)
    seen = b""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        ready, _, _ = select.select([master], [], [], 1.0)
        if not ready:
            continue
        try:
            piece = os.read(master, 65536)
        except OSError:
            break
        if not piece:
            break
        seen += piece
    else:
        os.kill(pid, 9)
    _, status = os.waitpid(pid, 0)
    os.close(master)
    return os.waitstatus_to_exitcode(status), seen


def without_colours(screen):
    """The text of a screen, without colour and cursor sequences."""
    return re.sub(rb"\x1b\[[0-9;?]*[A-Za-z]", b"", screen).decode("utf-8", "replace").replace("\r\n", "\n")
