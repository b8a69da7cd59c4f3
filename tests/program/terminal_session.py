"""The real program on a terminal, driven like a person would: look at the screen, type, look again.

A Windows executable runs under Wine, whose console draws on the same kind of terminal.
"""

import fcntl
import os
import pty
import re
import select
import signal
import struct
import termios
import time
import tty

from kelvara_program import PROGRAM

ON_WINDOWS = PROGRAM[-1].endswith(".exe")

# The parameters of colour sequences, with what is shown for them here.
COLOURS = {
    "0": "<white>", "": "<white>", "94": "<B>", "92": "<G>", "96": "<T>", "91": "<R>", "95": "<P>", "93": "<Y>",
    "34": "<b>", "32": "<g>", "36": "<t>", "31": "<r>", "35": "<p>", "33": "<y>",
}
COLOUR = re.compile("\x1b\\[([0-9;]*)m")
MARK = "<(?:white|[A-Za-z])>"


def with_colour_letters(screen, shown):
    """The text of a screen with its colours as <letter>, and the last of them.

    Changes to the colour that is already `shown` are left out.
    """
    text = screen.decode("utf-8", "replace").replace("\r\n", "\n")
    if ON_WINDOWS:
        # The cursor is hidden and shown again around every write, and blanks are moves of the cursor.
        text = re.sub("\x1b\\[\\?25[lh]|\x1b\\[K", "", text)
        text = re.sub("\x1b\\[([0-9]*)C", lambda move: " " * int(move[1] or 1), text)
    pieces = []
    for number, piece in enumerate(COLOUR.split(text)):
        if number % 2 == 0:
            pieces.append(piece)
        elif COLOURS[re.sub("^0;", "", piece)] != shown:
            shown = COLOURS[re.sub("^0;", "", piece)]
            pieces.append(shown)
    return "".join(pieces), shown


def without_marks(text):
    return re.sub(MARK, "", text)


def with_visible_colours(text):
    """Colours only where they can be seen: where a line stops being white, and where they change in it."""
    shown = wanted = "<white>"
    pieces = []
    for token in re.findall(f"{MARK}|\n|[ ]+|[^\n <]+|<", text):
        if re.fullmatch(MARK, token):
            wanted = token
        elif token == "\n":
            shown = "<white>"
            pieces.append(token)
        else:
            if token[0] != " " and wanted != shown:
                shown = wanted
                pieces.append(shown)
            pieces.append(token)
    return "".join(pieces)


def coloured_characters(text):
    """Every character of a text with its colour: None for blanks, and before the first colour."""
    colour = None
    characters = []
    for token in re.findall(f"{MARK}|[^<]|<", text):
        if re.fullmatch(MARK, token):
            colour = token
        else:
            characters.append((token, None if token.isspace() else colour))
    return characters


def stands_in(expected, screen):
    """Whether a text with colour letters stands on a screen, colours compared where they can be seen."""
    wanted = coloured_characters(expected)
    shown = coloured_characters("<white>" + screen)
    text = without_marks(screen)
    place = text.find(without_marks(expected))
    while place >= 0:
        if all(colour in (None, there) for (_, colour), (_, there) in zip(wanted, shown[place:])):
            return True
        place = text.find(without_marks(expected), place + 1)
    return False


class Session:
    """A run of the program; a context manager that leaves no process behind.

    The terminal belongs to somebody else than the program, as under a shell, so that the program asks it
    nothing; as its `leader` the program would find itself in a window of its own.
    """

    def __init__(self, *arguments, columns=100, rows=400, environment=None, leader=False,
                 processors=None):
        self._start = lambda: self._run(arguments, columns, rows, environment, leader, processors)
        self._may_start_again = ON_WINDOWS
        self._start()

    def _run(self, arguments, columns, rows, environment, leader, processors):
        self.seen = b""
        # Whole lines are translated once.
        self._translated = 0
        self._coloured = self._plain = ""
        self._shown = "<white>"
        self._searched = 0
        self._ended = None
        self.pid, self.master = pty.fork()
        if self.pid == 0:
            if processors:
                os.sched_setaffinity(0, processors)
            fcntl.ioctl(0, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))
            if ON_WINDOWS:
                tty.setraw(0)
            elif not leader:
                self._run_in_a_child()
            # Wine opens a console window for the program, so that it would wait for a key at its end.
            flags = ["skip-warnings", "pause:-1"] if ON_WINDOWS else ["skip-warnings"]
            os.execvpe(PROGRAM[0], PROGRAM + flags + list(arguments),
                       {**os.environ, "TERM": "xterm", "NO_COLOR": "", **(environment or {})})

    @staticmethod
    def _run_in_a_child():
        """Goes on in a child in the foreground; the parent ends as the child does."""
        child = os.fork()
        if child:
            signal.signal(signal.SIGTTOU, signal.SIG_IGN)
            os.setpgid(child, child)
            os.tcsetpgrp(0, child)
            for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
                signal.signal(number, signal.SIG_IGN)
            code = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])
            os._exit(code if code >= 0 else 128 - code)
        os.setpgid(0, 0)
        while os.tcgetpgrp(0) != os.getpid():
            time.sleep(0.001)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._leave()

    def _leave(self):
        os.close(self.master)
        if self._ended is None:
            os.kill(self.pid, signal.SIGKILL)
            os.waitpid(self.pid, 0)

    def read(self, seconds):
        """Reads what the program writes next; False when that was nothing."""
        ready, _, _ = select.select([self.master], [], [], max(seconds, 0))
        if not ready:
            return False
        try:
            piece = os.read(self.master, 65536)
        except OSError:
            piece = b""
        if not piece and not self.seen and self._may_start_again:
            # One start in some thousands ends at once in Wine.
            self._may_start_again = False
            self._leave()
            self._start()
            return self.read(seconds)
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
            if not self.read(deadline - time.monotonic()):
                raise AssertionError(f"{text!r} did not appear in\n{self.text()}")

    def searched_to_the_end(self):
        """All that is shown counts as waited for."""
        self._searched = len(self.text())

    def stands_at_coloured_prompt(self):
        """Whether the last that came is what was waited for, and behind it the colour of an answer."""
        screen = self.coloured()
        return (self._searched > 0 and len(without_marks(screen)) == self._searched
                and re.search("<[A-Za-z]>$", screen) is not None)

    def settle(self):
        """Reads until the program waits: its prompt's colour is set, or it is silent for a moment.

        A terminal echoes at once, in the colour that it has by then; a console when the program reads.
        """
        if ON_WINDOWS:
            return
        deadline = time.monotonic() + 2
        while not self.stands_at_coloured_prompt() and self.read(0.1) and time.monotonic() < deadline:
            pass

    def type(self, keys):
        self.settle()
        keys = keys.replace("\n", "\r") if ON_WINDOWS else keys
        os.write(self.master, keys.encode())

    def answer(self, prompt, keys):
        """Waits for the prompt and types a line."""
        self.wait_for(prompt)
        self.type(keys + "\n")

    def type_end_of_input(self):
        self.type("\x1a\n" if ON_WINDOWS else "\x04")

    def foreground(self):
        """The process group that keys like Ctrl-C are meant for."""
        return os.tcgetpgrp(self.master)

    def lines_and_echo_are_on(self):
        flags = termios.tcgetattr(self.master)[3]
        return bool(flags & termios.ICANON) and bool(flags & termios.ECHO)

    def end(self, seconds=60):
        """Reads to the end. The exit code; 128 and the signal that ended the program."""
        deadline = time.monotonic() + seconds
        while self.read(deadline - time.monotonic()):
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
        rest = self._translate_lines()
        return self._plain + without_marks(rest)

    def coloured(self):
        rest = self._translate_lines()
        return self._coloured + rest

    def _translate_lines(self):
        """The text of the last line, which may not be whole."""
        end = self.seen.rfind(b"\n") + 1
        lines, self._shown = with_colour_letters(self.seen[self._translated:end], self._shown)
        self._translated = max(end, self._translated)
        self._coloured += lines
        self._plain += without_marks(lines)
        return with_colour_letters(self.seen[end:], self._shown)[0]

    def shows(self, expected):
        """Whether a text with colour letters stands on the screen. Wine sets colours where they show only."""
        if ON_WINDOWS:
            return stands_in(expected, self.coloured())
        return expected in self.coloured()
