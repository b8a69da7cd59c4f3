"""The menu "Custom Compute a Constant" as a test types at it."""
from kelvara_program import ProgramTest
from terminal_session import Session


class CustomMenuTest(ProgramTest):
    """Every session begins at the menu's prompt."""

    def menu(self):
        session = Session("custom")
        session.wait_for("Start Computation!")
        return session

    def choose(self, session, *answers):
        """Types answers, each at an own prompt, until the menu stands there again."""
        for answer in answers:
            prompt, keys = answer if isinstance(answer, tuple) else ("option: ", answer)
            session.answer(prompt, keys)
        session.wait_for("Start Computation!")

    def shown(self, session, label):
        """The value behind a label in the menu shown last."""
        text = session.text()
        menu = text[text.rindex("Custom Compute a Constant\n"):]
        return next(line for line in menu.split("\n") if label in line).split(label)[1].strip()

    def leave(self, session):
        session.wait_for("option: ")
        session.type_end_of_input()
        self.assertEqual(session.end(), 1)
        self.assertIn("There is no more input: the program ends here.", session.text())
