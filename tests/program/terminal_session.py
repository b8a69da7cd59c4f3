"""The real program on a pseudo-terminal, driven like a person would: look at the screen, type, look again."""

import fcntl
import os
import pty
import re
import select
import signal
import struct
import termios
import time

from kelvara_program import PROGRAM, without_colours

COLOUR_NAMES = {
    "\x1b[0m": "<white>", "\x1b[0;94m": "<B>", "\x1b[0;92m": "<G>", "\x1b[0;96m": "<T>", "\x1b[0;91m": "<R>",
    "\x1b[0;95m": "<P>", "\x1b[0;93m": "<Y>", "\x1b[0;34m": "<b>", "\x1b[0;32m": "<g>", "\x1b[0;36m": "<t>",
    "\x1b[0;31m": "<r>", "\x1b[0;35m": "<p>", "\x1b[0;33m": "<y>",
}


def with_colour_letters(screen):
    """The text of a screen with its colours as <letter>; changes to the colour already shown are left out."""
    text = screen.decode("utf-8", "replace").replace("\r\n", "\n")
    shown = "<white>"
    pieces = []
    for piece in re.split("(\x1b\\[[0-9;]*m)", text):
        if piece.startswith("\x1b["):
            pending = COLOUR_NAMES[piece]
            if pending != shown:
                pieces.append(pending)
                shown = pending
        else:
            pieces.append(piece)
    return "".join(pieces)


class Session:
    """A run of the program; a context manager that leaves no process behind."""

    def __init__(self, *arguments, columns=80, rows=25, environment=None, leader=False):
        self.seen = b""
        self._searched = 0
        self._ended = None
        self.pid, self.master = pty.fork()
        if self.pid == 0:
            if not leader:
                # The terminal belongs to somebody else then, as under a shell: the program asks it nothing.
                child = os.fork()
                if child:
                    signal.signal(signal.SIGTTOU, signal.SIG_IGN)
                    os.setpgid(child, child)
                    os.tcsetpgrp(0, child)
                    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
                        signal.signal(number, signal.SIG_IGN)
                    _, status = os.waitpid(child, 0)
                    code = os.waitstatus_to_exitcode(status)
                    os._exit(code if code >= 0 else 128 - code)
                os.setpgid(0, 0)
                while os.tcgetpgrp(0) != os.getpid():
                    time.sleep(0.001)
            os.execvpe(PROGRAM[0], PROGRAM + ["skip-warnings"] + list(arguments),
                       {**os.environ, "TERM": "xterm", "NO_COLOR": "", **(environment or {})})
        fcntl.ioctl(self.master, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.master)
        if self._ended is None:
            os.kill(self.pid, signal.SIGKILL)
            os.waitpid(self.pid, 0)

    def _read(self, seconds):
        ready, _, _ = select.select([self.master], [], [], seconds)
        if not ready:
            return False
        try:
            piece = os.read(self.master, 65536)
        except OSError:
            return False
        self.seen += piece
        return bool(piece)

    def wait_for(self, text, seconds=60):
        """Reads until `text`, colours left out, stands behind everything that was waited for before."""
        deadline = time.monotonic() + seconds
        while True:
            found = self.text().find(text, self._searched)
            if found >= 0:
                self._searched = found + len(text)
                return
            if time.monotonic() > deadline or not self._read(deadline - time.monotonic()):
                raise AssertionError(f"{text!r} did not appear in\n{self.text()}")

    def type(self, keys):
        os.write(self.master, keys.encode() if isinstance(keys, str) else keys)

    def answer(self, prompt, keys):
        """Waits for the prompt and types a line."""
        self.wait_for(prompt)
        self.type(keys + "\n")

    def foreground(self):
        """The process group that keys like Ctrl-C are meant for."""
        return os.tcgetpgrp(self.master)

    def lines_and_echo_are_on(self):
        flags = termios.tcgetattr(self.master)[3]
        return bool(flags & termios.ICANON) and bool(flags & termios.ECHO)

    def end(self, seconds=60):
        """Reads to the end. The exit code; 128 and the signal that ended the program."""
        deadline = time.monotonic() + seconds
        while time.monotonic() < deadline and self._read(deadline - time.monotonic()):
            pass
        while time.monotonic() < deadline:
            pid, status = os.waitpid(self.pid, os.WNOHANG)
            if pid:
                code = os.waitstatus_to_exitcode(status)
                self._ended = code if code >= 0 else 128 - code
                return self._ended
            time.sleep(0.01)
        raise AssertionError("the program does not end\n" + self.text())

    def text(self):
        return without_colours(self.seen)

    def coloured(self):
        return with_colour_letters(self.seen)
