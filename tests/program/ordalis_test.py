"""Ordalis, the viewer of digit files: what it writes, and files that it cannot read. Transcripts have its screens."""

import os
import unittest

from digit_files import DECIMAL, HEXADECIMAL, compressed, write_digit_files, write_file, write_result
from kelvara_program import ProgramTest

VIEW, COUNT, HASH = "0", "1", "2"
COMPRESS = WRITE_TEXT = "3"
RECOMPRESS = "4"


class Ordalis(ProgramTest):
    def setUp(self):
        super().setUp()
        self._before = os.getcwd()
        os.chdir(self.folder)
        write_digit_files(self.folder)

    def tearDown(self):
        os.chdir(self._before)
        super().tearDown()

    def run_ordalis(self, *answers):
        """The output of a run that ends by itself."""
        write_file(self.folder, "answers", "".join(answer + "\n" for answer in answers).encode())
        with open("answers", "rb") as file:
            code, output = self.run_program("ordalis", stdin=file)
        self.assertEqual(code, 0, output)
        return output

    def content(self, name):
        with open(name, "rb") as file:
            return file.read()

    def assert_told(self, message, *answers):
        """An exception with this message ends the tool."""
        output = self.run_ordalis(*answers)
        self.assertEqual(output.count("Exception Encountered: "), 1, output)
        self.assertIn(message, output)
        return output


class Files(Ordalis):
    """Files that cannot be opened: the exception is told, and the program ends."""

    def assert_not_opened(self, name, message, content=None):
        if content is not None:
            write_file(self.folder, name, content)
        self.assertNotIn("What would you like to do?", self.assert_told(message, name))

    def test_names(self):
        self.assert_not_opened("", "No Extension found.")
        self.assert_not_opened(" ", "No Extension found.")
        self.assert_not_opened("pi", "No Extension found.")
        self.assert_not_opened("pi.TXT", "Unrecognized Extension: .TXT")
        self.assert_not_opened("pi.QCD", "Unrecognized Extension: .QCD")
        self.assert_not_opened("pi.txt ", "Unrecognized Extension: .txt ")
        self.assert_not_opened("pi.", "Unrecognized Extension: .")

    def test_missing_files_and_folders(self):
        os.mkdir("folder.txt")
        os.mkdir("folder.qcd")
        for name in ("none.txt", "none.qcd", "none/pi.txt", "folder.txt", "folder.qcd", "x/" * 5000 + "pi.txt"):
            with self.subTest(name=name):
                self.assert_not_opened(name, "Path: " + name)

    def test_text_files(self):
        self.assert_not_opened("empty.txt", "Unexpected End of File", b"")
        self.assert_not_opened("no-point.txt", "Unexpected End of File", b"314")
        self.assert_not_opened("late-point.txt", "A decimal place was not found within the first 63 bytes of the file.",
                               b"1" * 63 + b".1")
        self.assert_not_opened("no-digits.txt", "Invalid Digit", b"Pi = 3.14")

    def test_compressed_files(self):
        good = compressed(DECIMAL[:100], 10, 100, 0, 0)
        self.assert_not_opened("a.qcd", "Invalid File Format", b"")
        self.assert_not_opened("a.qcd", "Invalid File Format", b"3.14")
        self.assert_not_opened("a.qcd", "Error Reading File", good[:100])
        self.assert_not_opened("a.qcd", "No version # found.", good.replace(b"FileVersion", b"Version"))
        self.assert_not_opened("a.qcd", "This .qcd file is of a later format version.\n"
                               "This version of the Ordalis is unable to view this file.",
                               good.replace(b"1.1.0", b"1.2.0"))
        self.assert_not_opened("a.qcd", "Invalid Digits per File", good.replace(b"size:\t100", b"size:\t99"))
        self.assert_not_opened("a.qcd", "Unsupported Radix", good.replace(b"Base:\t10", b"Base:\t8"))
        self.assert_not_opened("a.qcd", "This file is out of range.\nStart:        100\nEnd:          200\n"
                               "Total Digits: 100\n", compressed(DECIMAL[:100], 10, 100, 1, 100))


class Damage(Ordalis):
    """Files that open, and cannot be read to the end."""

    def test_a_text_without_digits(self):
        write_file(self.folder, "none.txt", b"3.")
        output = self.run_ordalis("none.txt", VIEW, "1", "1")
        self.assertIn("Total Digits after decimal place:  0\n", output)
        self.assertIn("This range of digits is not accessible.\n", output)

    def test_a_character_that_is_no_digit(self):
        write_file(self.folder, "bad.txt", b"3." + DECIMAL.encode() + b":0")
        self.assert_told("Invalid Digit: 0 - 252", "bad.txt", COUNT, "1", "10")
        self.assertIn(" 1  :  250\n:0\n", self.run_ordalis("bad.txt", VIEW, "250", "3"))

    def test_a_file_that_was_cut(self):
        whole = self.content("few/pi1.qcd")
        write_file(self.folder, "few/pi1.qcd", whole[:-8])
        self.assert_told("Error Reading File", "few/pi0.qcd", COUNT, "1", "200")
        self.assertIn("{8,8,12,11,10,8,9,8,12,14}", self.run_ordalis("few/pi0.qcd", COUNT, "1", "100"))

    def test_first_digits_that_are_none(self):
        write_file(self.folder, "odd/0.qcd", compressed(DECIMAL, 10, 1000, 0, 250).replace(b"3.", b"\x1b[2J"))
        self.assertIn("First Digits:       ?[2J\n", self.run_ordalis("odd/0.qcd", VIEW, "1", "1"))
        self.assert_told("A decimal place was not found within the first 63 bytes of the file.",
                         "odd/0.qcd", HASH, "1")
        self.assert_told("No decimal place was found.", "odd/0.qcd", WRITE_TEXT, "1", "1", "x")

    def test_files_of_different_results(self):
        write_file(self.folder, "few/pi1.qcd", compressed(HEXADECIMAL[:100], 16, 100, 1, 0))
        output = self.run_ordalis("few/pi0.qcd", COUNT, "1", "200")
        self.assertIn("This range of digits is not accessible.\n", output)


class Conversions(Ordalis):
    def test_from_text_to_compressed_and_back(self):
        self.run_ordalis("pi.txt", COMPRESS, "250", "1m", "New", self.folder)
        self.assertEqual(self.content("New/New - 0.qcd"), compressed(DECIMAL, 10, 1000000, 0, 250))
        self.run_ordalis("New/New - 0.qcd", WRITE_TEXT, "1", "250", "back.txt")
        self.assertEqual(self.content("back.txt"), self.content("pi.txt"))

    def test_a_single_file_lies_in_the_folder_itself(self):
        self.run_ordalis("hex.txt", COMPRESS, "100", "0", "Hex", " anything")
        self.assertEqual(self.content("Hex - 0.qcd"), compressed(HEXADECIMAL[:100], 16, 2**64 - 1, 0, 100))
        self.run_ordalis("Hex - 0.qcd", WRITE_TEXT, "1", "100", "back")
        self.assertEqual(self.content("back.txt"), b"3." + HEXADECIMAL[:100].encode())

    def test_defaults(self):
        self.run_ordalis("pi.txt", COMPRESS, "1", "0", "", "")
        self.assertEqual(self.content("Name - 0.qcd"), compressed("1", 10, 2**64 - 1, 0, 1))

    def test_digits_without_their_beginning_are_no_digit_file(self):
        self.run_ordalis("few/pi2.qcd", WRITE_TEXT, "2", "200", "rest.txt")
        self.assertEqual(self.content("rest.txt"), DECIMAL[1:201].encode())
        self.assert_told("A decimal place was not found within the first 63 bytes of the file.", "rest.txt")

    def test_decompression_goes_through_all_folders(self):
        self.run_ordalis("here/pi - 0.qcd", "5", "there", WRITE_TEXT, "1", "250", "all")
        self.assertEqual(self.content("all.txt"), self.content("pi.txt"))

    def test_more_than_there_is_cannot_be_decompressed(self):
        output = self.run_ordalis("few/pi0.qcd", WRITE_TEXT, "1", "251")
        self.assertIn("This range of digits is not accessible.\n", output)

    def test_recompression_names_the_files_after_their_source(self):
        self.run_ordalis("pi/pi - 2.qcd", RECOMPRESS, "1m", "0", "7", "there")
        self.assertEqual(self.content("there/pi/pi - 0.qcd"), compressed(DECIMAL, 10, 1000000, 0, 250))
        self.assertEqual(os.listdir("there/pi"), ["pi - 0.qcd"])
        write_result(self.folder, "nameless/", DECIMAL, 10, 100)
        self.run_ordalis("nameless/2.qcd", RECOMPRESS, "1m", "0", "0", " ")
        self.assertEqual(self.content("Name/Name - 0.qcd"), compressed(DECIMAL, 10, 1000000, 0, 250))

    def test_no_file_is_recompressed_into_its_own_folder(self):
        before = {name: self.content("pi/" + name) for name in os.listdir("pi")}
        for folder in (" ", ".", self.folder, "pi/.."):
            self.assert_told("The digits cannot be written into the folder that they are read from.",
                             "pi/pi - 2.qcd", RECOMPRESS, "1m", "0", "0", folder)
        self.assert_told("The digits cannot be written into the folder that they are read from.",
                         "here/pi - 2.qcd", "5", "there", "5", "pi", RECOMPRESS, "1m", "0", "0", "")
        self.assertEqual({name: self.content("pi/" + name) for name in os.listdir("pi")}, before)

    def test_destinations_that_are_none(self):
        self.assert_told("Path: none", "pi.txt", COMPRESS, "250", "1m", "Pi", "none/none")
        self.assert_told("Path: none", "pi.txt", COMPRESS, "250", "0", "Pi", "none")
        self.assert_told("Path: none", "few/pi2.qcd", WRITE_TEXT, "1", "250", "none/pi.txt")
        self.assert_told("Path: ", "few/pi2.qcd", RECOMPRESS, "1m", "0", "0", "pi.txt")


if __name__ == "__main__":
    unittest.main(verbosity=1)
