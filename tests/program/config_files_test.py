"""Configuration files that are wrong in one way: the whole answer of the "config" action to each."""

import os
import re
import subprocess
import unittest

from kelvara_program import ProgramTest
from terminal_session import ON_WINDOWS

SETTINGS = """{
    Action : "CustomCompute"
    CustomCompute : {
        Constant : {
            Constant : "pi"
            Algorithm : "chudnovsky"
        }
        ComputeSize : {
            DecimalDigits : 1000
            EnableHexDigits : "false"
        }
        Output : {
            Path : "digits"
            DigitsPerFile : 0
        }
        Mode : "ram"
        Parallelism : {
            TaskDecomposition : 2
            Framework : "pushpool"
            WorkerThreads : 2
            Randomization : "true"
        }
        Allocator : {
            Allocator : "mmap"
            LargePages : "attempt"
            LockedPages : "attempt"
        }
    }
}"""

# Each member by what stands in front of it in the text, its object's name in messages, and its type.
MEMBERS = {
    "    Action": ("", "String"),
    "    CustomCompute": ("", "Object"),
    "        Constant": ("Custom Compute", "Object"),
    "            Constant": ("Constant", "String"),
    "            Algorithm": ("Constant", "String"),
    "        ComputeSize": ("Custom Compute", "Object"),
    "            DecimalDigits": ("Computation Size", "Integer"),
    "            EnableHexDigits": ("Computation Size", "String"),
    "        Output": ("Custom Compute", "Object"),
    "            Path": ("Output Format", "String"),
    "            DigitsPerFile": ("Output Format", "Integer"),
    "        Mode": ("Custom Compute", "String"),
    "        Parallelism": ("Custom Compute", "Object"),
    "            TaskDecomposition": ("Parallel Framework", "Integer"),
    "            Framework": ("Parallel Framework", "String"),
    "            WorkerThreads": ("Parallel Framework", "Integer"),
    "            Randomization": ("Parallel Framework", "String"),
    "        Allocator": ("Custom Compute", "Object"),
    "            Allocator": ("Memory Allocator", "String"),
    "            LargePages": ("Memory Allocator", "String"),
    "            LockedPages": ("Memory Allocator", "String"),
}
VALUES = {"Integer": "7", "String": '"7"', "Array": "[7]", "Object": "{ A : 7 }"}


def value_of(member):
    """Where the value of a member stands in the text: (start, end)."""
    start = re.search(f"^{re.escape(member)} : ", SETTINGS, re.M).end()
    if SETTINGS[start] != "{":
        return start, SETTINGS.index("\n", start)
    indentation = re.match(" *", member)[0]
    return start, re.compile(f"^{indentation}}}", re.M).search(SETTINGS, start).end()


def with_value(member, value):
    start, end = value_of(member)
    return SETTINGS[:start] + value + SETTINGS[end:]


def without(member):
    start, end = value_of(member)
    return SETTINGS[:start - len(member) - len(" : ")] + SETTINGS[end:]


class ConfigurationFiles(ProgramTest):
    def setUp(self):
        super().setUp()
        os.chdir(self.folder)
        os.mkdir("digits")

    def tearDown(self):
        os.chdir("/")
        super().tearDown()

    def run_file(self, name, content=None, **options):
        if content is not None:
            with open(name, "wb") as file:
                file.write(content if isinstance(content, bytes) else content.encode())
        code, output = self.run_program("config", name, **options)
        self.assertEqual(code, 0, output)
        return output

    def assert_answer(self, block, name, content=None, **options):
        """The exception and nothing else, on the screen and in the folders."""
        before = os.listdir()
        output = self.run_file(name, content, **options)
        answer = output[output.index("Exception Encountered: "):] if "Exception" in output else output
        self.assertEqual(answer, f"Exception Encountered: {block}\n\n\n")
        self.assertNotIn("Begin Computation", output)
        self.assertEqual(set(os.listdir()) - set(before) - {name}, set())
        self.assertEqual(os.listdir("digits"), [])

    def assert_wrong(self, message, content):
        self.assert_answer(f"ParseException\n\n{message}", "wrong.ini", content)

    def assert_computes(self, content):
        self.assertIn("Begin Computation", self.run_file("right.ini", content))
        self.assertEqual(os.listdir("digits"), ["Pi - Dec - Chudnovsky.txt"])
        os.remove("digits/Pi - Dec - Chudnovsky.txt")

    def test_that_is_right(self):
        self.assert_computes(SETTINGS)
        self.assert_computes(SETTINGS + "\n")
        self.assert_computes(b"\xef\xbb\xbf" + SETTINGS.encode())
        self.assert_computes(b"\xff\xfe" + SETTINGS.encode("utf-16-le"))
        self.assert_computes(b"\xfe\xff" + SETTINGS.replace("\n", "\r\n").encode("utf-16-be"))

    def test_wrong_types(self):
        for member, (context, expected) in MEMBERS.items():
            for actual, value in VALUES.items():
                # A number is a flag of a framework, too.
                if actual != expected and (member, actual) != ("            Randomization", "Integer"):
                    with self.subTest(member=member, actual=actual):
                        text = f"Expected {expected}, got {actual}."
                        self.assert_wrong(f"{context}: {text}" if context else text, with_value(member, value))
        self.assert_computes(with_value("            Randomization", "0"))
        for member in ("            EnableHexDigits", "            Randomization"):
            self.assert_wrong("Expected true or false.", with_value(member, '"True"'))

    def test_missing_keys(self):
        for member in MEMBERS:
            with self.subTest(member=member):
                self.assert_wrong(f"Key not found: {member.strip()}", without(member))

    def test_duplicate_keys(self):
        for member in MEMBERS:
            with self.subTest(member=member):
                start, end = value_of(member)
                again = f"{member} : 1"
                line = SETTINGS.count("\n", 0, end) + 2
                self.assert_wrong(f"Line {line}: Duplicate key in object.",
                                  f"{SETTINGS[:end]}\n{again} {SETTINGS[end:]}")

    def test_what_is_no_object(self):
        for value, actual in (("12 ", "Integer"), ('"text"', "String"), ("[ 1 2 ]", "Array")):
            self.assert_wrong(f"Expected Object, got {actual}.", value)

    def test_that_ends_early(self):
        self.assert_wrong("Line 1: Unexpected null character or end of file.", b"")
        for mark in (b"\xef\xbb\xbf", b"\xff\xfe", b"\xfe\xff"):
            self.assert_wrong("Line 1: Unexpected null character or end of file.", mark)
        for end in (len(SETTINGS) - 1, len(SETTINGS) // 2, SETTINGS.index('ram"') + 1, SETTINGS.index("1000") + 4):
            line = SETTINGS.count("\n", 0, end) + 1
            self.assert_wrong(f"Line {line}: Unexpected null character or end of file.", SETTINGS[:end])
        cut = SETTINGS.index("Mode")
        self.assert_wrong("Line 16: Unexpected null character or end of file.",
                          SETTINGS[:cut].encode() + b"\0" + SETTINGS[cut:].encode())
        # Half a unit of UTF-16 stands for a character that no key holds.
        self.assert_wrong("Line 16: Invalid character in identifier.",
                          b"\xff\xfe" + SETTINGS[:cut].encode("utf-16-le") + b"M")

    def test_deep_nesting(self):
        self.assert_wrong("Line 1: Nesting is too deep.", "{ A : " * 100000)
        self.assert_wrong("Line 1: Nesting is too deep.", "[" * 100000 + "]" * 100000)
        self.assert_wrong("Line 1001: Nesting is too deep.", "{ A :\n" * 100000 + "1 " + "}" * 100000)

    def test_a_million_keys(self):
        keys = "".join(f"k{i} : {i}\n" for i in range(1000000))
        self.assert_wrong("Key not found: Action", "{\n" + keys + "}")
        self.assert_wrong("Line 1000002: Duplicate key in object.", "{\n" + keys + "k500000 : 1 }")
        # Keys that mean nothing are left alone.
        self.assert_computes(SETTINGS[:-1] + keys + "}")

    def test_no_file(self):
        os.mkdir("folder.ini")
        missing = "FileException\n\nIn Function: read_file_bytes()\nError Code: {}\nPath: {}\n\nUnable to open file."
        self.assert_answer(missing.format(2, "none.ini"), "none")
        self.assert_answer(missing.format(5, "folder.ini"), "folder")
        with open("plain", "w", encoding="utf-8"):
            self.assert_answer(missing.format(3, "plain/file.ini"), "plain/file.ini")

    @unittest.skipIf(ON_WINDOWS, "a user of Wine is everybody")
    def test_a_file_of_somebody_else(self):
        for name in ("open.ini", "locked.ini"):
            with open(name, "w", encoding="utf-8") as file:
                file.write("[]")
        os.chmod("locked.ini", 0)
        # Nothing is forbidden to root, who can be somebody else for once.
        options = {}
        if os.geteuid() == 0:
            os.chmod(self.folder, 0o755)
            options["preexec_fn"] = lambda: os.setuid(65534)
        try:
            self.assert_answer("ParseException\n\nExpected Object, got Array.", "open.ini", **options)
        except (subprocess.SubprocessError, PermissionError):
            self.skipTest("this user cannot be anybody else, or nobody else can start the program")
        self.assert_answer("FileException\n\nIn Function: read_file_bytes()\nError Code: 5\nPath: locked.ini\n\n"
                           "Unable to open file.", "locked.ini", **options)

    @unittest.skipIf(ON_WINDOWS, "a device of Linux")
    def test_a_file_without_an_end(self):
        self.assert_answer("FileException\n\nIn Function: read_file_bytes()\nError Code: 223\n"
                           "Path: /dev/./zero\n\nUnable to read file.", "/dev/./zero")

    # Its first page, which no process has.
    @unittest.skipIf(ON_WINDOWS, "a file of Linux")
    def test_a_file_that_breaks_while_it_is_read(self):
        self.assert_answer("FileException\n\nIn Function: read_file_bytes()\nError Code: 30\n"
                           "Path: /proc/./self/mem\n\nUnable to read file.", "/proc/./self/mem")


if __name__ == "__main__":
    unittest.main(verbosity=1)
