"""A copy of the program in a folder of its own, with what it looks for beside it."""

import os
import re
import shutil

from kelvara_program import PROGRAM, ProgramTest


class InstalledProgram(ProgramTest):
    """While a test runs, the program that is driven is the copy, and validation files go into a folder of their own."""

    def setUp(self):
        super().setUp()
        self.installed = os.path.join(self.folder, "installed")
        self.results = os.path.join(self.folder, "results")
        for folder in (self.installed, self.results):
            os.mkdir(folder)
        self._original = PROGRAM[-1]
        self.program = shutil.copy(PROGRAM[-1], self.installed)
        PROGRAM[-1] = self.program

    def tearDown(self):
        PROGRAM[-1] = self._original
        super().tearDown()

    def install(self, name, text):
        path = os.path.join(self.installed, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def run_installed(self, *arguments, **options):
        return self.run_program(*arguments, cwd=self.results, **options)

    def validation_file(self):
        """The path of the only one."""
        names = [name for name in os.listdir(self.results) if re.fullmatch(r"Pi - \d{8}-\d{6}\.txt", name)]
        self.assertEqual(len(names), 1, names)
        return os.path.join(self.results, names[0])

    def validation_text(self):
        with open(self.validation_file(), "rb") as file:
            return file.read()

    def run_validator(self, path):
        """Everything that the validator prints when it is given a path."""
        answer = os.path.join(self.folder, "answer")
        with open(answer, "w", encoding="utf-8") as file:
            file.write(path + "\n")
        with open(answer, encoding="utf-8") as file:
            code, output = self.run_installed("validate", stdin=file)
        self.assertEqual(code, 0, output)
        return output

    def validate(self, path):
        """What the validator answers to a path."""
        output = self.run_validator(path)
        prompt = "Benchmark Validator\n\nEnter Path of Validation File:\n"
        return output[output.index(prompt) + len(prompt):]
