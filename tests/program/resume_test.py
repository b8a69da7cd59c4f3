"""A checkpoint file in the current directory, as a user at a terminal sees it."""

import os
import unittest

from kelvara_program import ProgramTest
from terminal_session import Session

NAME = "Kelvara Checkpoint File.txt"
FOUND = "\n<Y>An unfinished computation has been found.\nResuming...\n\n<white>Press any key to continue . . . "


class Resume(ProgramTest):
    def setUp(self):
        super().setUp()
        os.chdir(self.folder)

    def tearDown(self):
        os.chdir("/")
        super().tearDown()

    def test_a_file_that_cannot_be_used_is_shown_and_kept(self):
        with open(NAME, "wb") as file:
            file.write(b"This is somebody's only copy.")
        for arguments in ((), ("custom", "pi", "-dec:100")):
            with Session(*arguments) as session:
                session.wait_for("Press any key to continue . . . ")
                self.assertTrue(session.shows(FOUND), session.coloured())
                session.type("x")
                session.wait_for("Header not found.")
                session.wait_for("Press any key to continue . . . ")
                self.assertTrue(session.shows("\n\n<R>Header not found.\n"), session.coloured())
                session.type("x")
                self.assertEqual(session.end(), 1)
                self.assertNotIn("Begin Computation", session.text())
                self.assertNotIn("Enter your choice", session.text())
        self.assertEqual(os.listdir(), [NAME])
        with open(NAME, "rb") as file:
            self.assertEqual(file.read(), b"This is somebody's only copy.")

    def test_without_the_file_nothing_is_said(self):
        code, output = self.run_program("about")
        self.assertEqual(code, 0)
        self.assertNotIn("unfinished", output)
        self.assertNotIn("heckpoint", output)


if __name__ == "__main__":
    unittest.main(verbosity=1)
