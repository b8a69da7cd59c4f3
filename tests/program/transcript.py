"""Transcripts of terminal sessions: what a person saw and typed, replayed on the real program.

A file of `transcripts/` begins with the command line ("$ kelvara custom"), what the machine must be like behind
a "#" ("digit files" lie in the session's folder), and goes on with the screen to the letter:

    <P>Compute a Constant:           the colour letter stands where a line stops being white or changes its colour
    option: <T>«12»                  a typed line, here 12; «key» is one key at a pause
    [Linux] text, [Windows] text     a line of one system only
    {bytes} {size}                   "1,048,576 (1.00 MiB)" and "1.00 MiB"
    {count} {decimal} {...}          "1,048,576", "1.250", and anything at all, lines included
    option: «end»                    at the end: the input ends there, and with it the program
    [exit 0]                         at the end: the program ended by itself
"""

import difflib
import re
import time

from terminal_session import MARK, ON_WINDOWS, Session, with_visible_colours, without_marks

OTHER_SYSTEM = "[Linux]" if ON_WINDOWS else "[Windows]"
THIS_SYSTEM = "[Windows]" if ON_WINDOWS else "[Linux]"
PLACEHOLDERS = {
    r"\{bytes\}": r"[0-9,]+ \([ 0-9.]+ (?:bytes|[KMGTPE]iB)\)",
    r"\{size\}": r"[ 0-9.]+ (?:bytes|[KMGTPE]iB)",
    r"\{count\}": r"[0-9,]+",
    r"\{decimal\}": r"[0-9]+\.[0-9]{3}",
    r"\{\.\.\.\}": r"(?:.|\n)*?",
}
END_OF_INPUT = "There is no more input: the program ends here."
EXIT = re.compile(r"\[exit (\d+)\]\n\Z")


def pattern_of(text):
    pattern = re.escape(text)
    for placeholder, meaning in PLACEHOLDERS.items():
        pattern = pattern.replace(placeholder, meaning)
    if ON_WINDOWS:
        # A console does not draw blanks at the end of a line.
        pattern = re.sub(r"(\\ )+\\\n", " *\n", pattern)
    return re.compile(pattern)


class Transcript:
    def __init__(self, path):
        with open(path, encoding="utf-8") as file:
            command, _, text = file.read().partition("\n")
        assert command.startswith("$ kelvara"), path
        command, *conditions = [part.strip() for part in command.split("#")]
        self.arguments = command.split()[2:]
        self.needs_digit_files = "digit files" in conditions
        self.conditions = [condition for condition in conditions if condition != "digit files"]
        lines = [line for line in text.split("\n") if not line.startswith(OTHER_SYSTEM)]
        text = "\n".join(re.sub("^" + re.escape(THIS_SYSTEM) + " ?", "", line) for line in lines)
        ending = EXIT.search(text)
        self.exit_code = int(ending[1]) if ending else None
        text = text[:ending.start()] if ending else text.removesuffix("«end»\n")
        ends_itself = ending is not None
        assert ends_itself or text.endswith(" "), path
        # Screens take turns with answers; an answer is echoed at the beginning of the next screen.
        first, *rest = re.split(f"((?:{MARK})?)«(.*?)»", text)
        self.screens = [first]
        self.answers = rest[1::3]
        for colour, answer, screen in zip(rest[0::3], self.answers, rest[2::3]):
            echo = "" if answer == "key" else colour + answer
            self.screens.append(re.sub(f"^{MARK}\n", "\n", echo + screen))

    def replay(self, **options):
        """Runs the program along the transcript. AssertionError where it shows anything else."""
        with Session(*self.arguments, rows=2000, **options) as session:
            self._begin(session)
            for number, answer in enumerate(self.answers):
                self._await(session, number)
                session.type(" " if answer == "key" else answer + "\n")
            if self.exit_code is None:
                self._await(session, len(self.answers))
                session.type_end_of_input()
                self._expect_end(session, 1)
                if session.text().count(END_OF_INPUT) != 1:
                    raise AssertionError(session.text())
            else:
                self._expect_end(session, self.exit_code)
                self._compare(session, len(self.answers))

    def _begin(self, session):
        """What the program says before it shows the first screen is no part of the transcript."""
        first = without_marks(self.screens[0]).split("\n", 1)[0]
        session.wait_for(first)
        # Where the next screen begins: in the plain text, and with its visible colours.
        self._at = session.text().index("\n" + first) + 1
        lines_before = session.text()[:self._at].split("\n")[:-1]
        lines = with_visible_colours(session.coloured()).split("\n")
        self._visibly_at = sum(len(line) + 1 for line in lines[:len(lines_before)])

    def _await(self, session, number):
        """Reads until the screen has come, or what cannot be it."""
        pattern = pattern_of(without_marks(self.screens[number]))
        deadline = time.monotonic() + 30
        while not pattern.fullmatch(session.text(), self._at):
            if not session.read(min(10, deadline - time.monotonic())):
                self._fail(session, number)
        session.searched_to_the_end()
        session.settle()
        self._compare(session, number)
        self._at = len(session.text())
        self._visibly_at = len(with_visible_colours(session.coloured()))

    def _compare(self, session, number):
        shown = with_visible_colours(session.coloured())
        if not pattern_of(self.screens[number]).fullmatch(shown, self._visibly_at):
            self._fail(session, number)

    def _expect_end(self, session, code):
        ended = session.end()
        if ended != code:
            raise AssertionError(f"exit code {ended}\n{session.text()}")

    def _fail(self, session, number):
        shown = with_visible_colours(session.coloured())[self._visibly_at:]
        raise AssertionError("\n" + "\n".join(difflib.unified_diff(
            self.screens[number].split("\n"), shown.split("\n"), "expected", "shown", lineterm="")))
