"""What the real program says before it does anything: the checks and the tables of cores and nodes."""

import os
import re
import unittest

from kelvara_program import ProgramTest


class Tables(ProgramTest):
    def tables_on(self, processors):
        """The lines of the tables, and what follows them, in a process with these processors only."""
        code, output = self.run_program(
            "custom", "pi", "-dec:100", "-o", self.folder, preexec_fn=lambda: os.sched_setaffinity(0, processors))
        self.assertEqual(code, 0, output)
        before, heading, after = output.partition("Parsing Core -> Handle Mappings...\n")
        self.assertTrue(heading, output)
        self.assertIn("Required Features:", before)
        self.assertNotIn("Required Features:", after)
        lines = after.split("\n")
        end = lines.index("")
        return lines[:end], "\n".join(lines[end:])

    def test_stand_between_the_checks_and_the_action(self):
        processors = sorted(os.sched_getaffinity(0))
        lines, after = self.tables_on(processors)
        last = len(processors) - 1
        self.assertEqual(lines[0], "    Cores:  " + ("0" if last == 0 else f"0-{last}"))
        self.assertEqual(lines[1], "Parsing NUMA -> Core Mappings...")
        self.assertRegex(lines[2], r"^    Node  0:  (None$|\d)")
        self.assertIn("Constant:", after)

    def test_a_process_of_one_processor_has_core_0_and_one_task(self):
        for processor in sorted(os.sched_getaffinity(0)):
            with self.subTest(processor=processor):
                lines, after = self.tables_on([processor])
                self.assertEqual(lines[0], "    Cores:  0")
                nodes = [line for line in lines[2:] if not line.endswith("None")]
                self.assertEqual(len(nodes), 1, lines)
                self.assertRegex(nodes[0], r"^    Node +\d+:  0$")
                self.assertTrue(re.search(r"Push Pool  ->  1 / \?", after), after)


if __name__ == "__main__":
    unittest.main(verbosity=1)
