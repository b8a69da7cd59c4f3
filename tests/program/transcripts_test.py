"""Replays every file of `transcripts/`: the screens and the menus of the real program, to the letter."""

import os
import unittest

from digit_files import write_digit_files
from kelvara_program import ProgramTest
from terminal_session import ON_WINDOWS
from transcript import Transcript

FOLDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "transcripts")


class Transcripts(ProgramTest):
    """Sessions start in the test's own folder, which is empty unless a transcript begins with digit files."""

    def setUp(self):
        super().setUp()
        self._before = os.getcwd()
        os.chdir(self.folder)

    def tearDown(self):
        os.chdir(self._before)
        super().tearDown()

    def replay(self, name):
        transcript = Transcript(os.path.join(FOLDER, name))
        for condition in transcript.conditions:
            reason = CONDITIONS[condition]()
            if reason:
                self.skipTest(reason)
        if transcript.needs_digit_files:
            write_digit_files(self.folder)
        processors = {min(os.sched_getaffinity(0))} if "one processor" in transcript.conditions else None
        transcript.replay(processors=processors)


def needs_several_processors():
    return "there is one processor" if len(os.sched_getaffinity(0)) < 2 else None


def needs_one_node():
    return "there are several NUMA nodes" if os.path.exists("/sys/devices/system/node/node1") else None


def needs_one_processor():
    return "the console's server has all processors" if ON_WINDOWS else None


CONDITIONS = {
    "one node": needs_one_node,
    "one processor": needs_one_processor,
    "several processors": needs_several_processors,
}


def add_tests():
    for name in sorted(os.listdir(FOLDER)):
        setattr(Transcripts, "test_" + name.removesuffix(".txt"), lambda self, name=name: self.replay(name))


add_tests()

if __name__ == "__main__":
    unittest.main(verbosity=1)
