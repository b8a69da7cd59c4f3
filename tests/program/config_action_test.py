"""The "config" action of the real program: which file it reads, and what it says of files that are wrong."""

import os
import unittest

from kelvara_program import ProgramTest
from terminal_session import ON_WINDOWS

MEMBERS = {
    "Constant": '{ Constant : "pi" Algorithm : "chudnovsky" }',
    "ComputeSize": '{ DecimalDigits : 1000 EnableHexDigits : "false" }',
    "Output": '{ Path : "FOLDER" DigitsPerFile : 0 }',
    "Mode": '"ram"',
    "Parallelism": '{ TaskDecomposition : 2 Framework : "none" }',
    "Allocator": '{ Allocator : "malloc" }',
}


class ConfigAction(ProgramTest):
    def setUp(self):
        super().setUp()
        os.chdir(self.folder)
        os.mkdir("digits")

    def tearDown(self):
        os.chdir("/")
        super().tearDown()

    def settings(self, **changes):
        """The text of a configuration with some members changed, or left out when None."""
        members = {**MEMBERS, **changes}
        text = "".join(f"{key} : {value}\n" for key, value in members.items() if value is not None)
        return '{ Action : "CustomCompute"\nCustomCompute : {\n' + text.replace("FOLDER", "digits") + "} }\n"

    def put(self, name, content):
        with open(name, "wb") as file:
            file.write(content if isinstance(content, bytes) else content.encode())
        return name

    def assert_computes(self, name):
        code, output = self.run_program("config", name)
        self.assertEqual(code, 0, output)
        self.assertIn("Begin Computation", output)
        self.assertEqual(os.listdir("digits"), ["Pi - Dec - Chudnovsky.txt"])
        with open("digits/Pi - Dec - Chudnovsky.txt", "rb") as file:
            self.assertEqual(len(file.read()), 1002)
        os.remove("digits/Pi - Dec - Chudnovsky.txt")

    def assert_file_refused(self, text, content):
        self.assert_refused(text, "config", self.put("bad.ini", content))
        self.assertEqual(os.listdir("digits"), [])

    def test_with_and_without_the_extension(self):
        self.put("pi.ini", self.settings())
        self.put("pi", "nonsense")
        self.assert_computes("pi")
        self.assert_computes("pi.ini")

    # Kept as it is: no extension is added to such a path.
    def test_a_folder_with_a_dot(self):
        os.mkdir("my.dir")
        self.put("my.dir/pi", self.settings())
        self.put("my.dir/pi.ini", "nonsense")
        self.assert_computes("my.dir/pi")

    def test_no_file_named(self):
        self.assert_refused("Please specify a config file.", "config")
        self.assert_refused("Please specify a config file.", "config:pi")

    @unittest.skipIf(ON_WINDOWS, "no file is named so")
    def test_a_path_with_a_colon_is_taken_whole(self):
        self.put("a:b.ini", self.settings())
        self.assert_computes("a:b")

    def test_further_arguments_are_left_alone(self):
        self.put("pi.ini", self.settings())
        code, output = self.run_program("config", "pi", "-dec:99", "nonsense")
        self.assertEqual(code, 0, output)
        self.assertIn("Begin Computation", output)

    def test_files_that_cannot_be_read(self):
        os.mkdir("folder.ini")
        self.assert_refused("Unable to open file.", "config", "none")
        self.assert_refused("Unable to open file.", "config", "")
        code, output = self.run_program("config", "folder.ini")
        self.assertNotIn("Begin Computation", output)
        self.assertIn("File", output)
        self.assertEqual(code, 0, output)

    def test_other_encodings(self):
        text = self.settings()
        for content in (text.encode("utf-16"), b"\xfe\xff" + text.encode("utf-16-be"), b"\xef\xbb\xbf" + text.encode(),
                        text.replace("\n", "\r\n").encode(), text.rstrip().encode()):
            self.put("pi.ini", content)
            self.assert_computes("pi")

    def test_files_without_settings(self):
        self.assert_file_refused("Unexpected null character or end of file.", "")
        self.assert_file_refused("Unexpected null character or end of file.", "\ufeff// nothing\r\n")
        self.assert_file_refused("Expected Object, got Array.", "[1 2]")
        self.assert_file_refused("Key not found: Action", "{ }")
        self.assert_file_refused("Key not found: CustomCompute", '{ Action : "CustomCompute" }')
        self.assert_file_refused("Unexpected null character or end of file.", self.settings()[:-10])
        self.assert_file_refused("Line 1: ", b"\x00\x01\xff\xfe" * 1000)

    def test_other_actions(self):
        self.assert_file_refused("Invalid Action: customcompute", '{ Action : "customcompute" customcompute : {} }')
        self.assert_file_refused("Invalid Action: Bench", '{ Action : "Bench" }')
        self.assert_file_refused("The I/O benchmark is not available in this build yet.",
                                 '{ Action : "BenchIO" BenchIO : {} }')

    def test_values_that_are_refused(self):
        for text, changes in (
                ("Invalid Mode: Swap", {"Mode": '"Swap"'}),
                ("Key not found: BytesPerSeek", {"Mode": '"swap"'}),
                ("Invalid Constant: tau", {"Constant": '{ Constant : "tau" }'}),
                ("16 is a perfect square.", {"Constant": '{ Constant : "sqrt" Argument : 16 Algorithm : "0" }'}),
                ("Path is not writable.", {"Output": '{ Path : "none" DigitsPerFile : 0 }'}),
                ("Invalid Memory Allocator: Malloc", {"Allocator": '{ Allocator : "Malloc" }'}),
                ("Custom Compute: Expected Object, got Integer.", {"Allocator": "1"}),
                ("Task decomposition must be between 1 and 65,536.",
                 {"Parallelism": '{ TaskDecomposition : 0 Framework : "none" }'})):
            self.assert_file_refused(text, self.settings(**changes))
        for key in MEMBERS:
            self.assert_file_refused(f"Key not found: {key}", self.settings(**{key: None}))

    def test_a_size_out_of_the_limits_is_adjusted(self):
        self.put("pi.ini", self.settings(ComputeSize='{ DecimalDigits : 5 EnableHexDigits : "false" }'))
        code, output = self.run_program("config", "pi")
        self.assertEqual(code, 0, output)
        self.assertIn("Warning: Precision below minimum. Adjusting to minimum.\n", output)
        self.assertRegex(output, r"Decimal Digits: +100\n")

    def test_hostile_files(self):
        self.assert_file_refused("Duplicate key", self.settings().replace("Mode", 'Mode : "ram"\nMode'))
        self.assert_file_refused("Line 1: ", "{ A : " * 100000)
        self.assert_file_refused("Line 1: ", "{ Action : " + "[" * 1000000)
        self.assert_file_refused("Key not found: Action",
                                 "{\n" + "".join(f"k{i} : {i}\n" for i in range(1000000)) + "}")


if __name__ == "__main__":
    unittest.main(verbosity=1)
