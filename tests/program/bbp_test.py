"""What the digit extractor does to its process and its threads, and what it tells during a run of minutes."""

import os
import signal
import unittest

from terminal_session import Session


class LongRun(unittest.TestCase):
    """A run at the default offset, which is interrupted once it tells how far it is."""

    def observe(self, *answers):
        """Process priority, and the processors of every thread but the main one, after these menu answers."""
        with Session("bbp") as session:
            for prompt, answer in [*answers, ("option: ", "0")]:
                session.answer(prompt, answer)
            session.wait_for("\nFrac( 1/(8k + 1) * 2^(-4k + 4000000002) )\nSumming...  ")
            session.wait_for("1 / 4 -> ")
            session.wait_for("%")
            pid = session.foreground()
            priority = os.getpriority(os.PRIO_PROCESS, pid)
            threads = [int(thread) for thread in os.listdir(f"/proc/{pid}/task") if int(thread) != pid]
            processors = [frozenset(os.sched_getaffinity(thread)) for thread in threads]
            os.kill(pid, signal.SIGINT)
            self.assertEqual(session.end(), 128 + signal.SIGINT)
        return priority, processors

    def test_one_pinned_thread_for_each_processor(self):
        priority, processors = self.observe()
        self.assertEqual(priority, max(5, os.getpriority(os.PRIO_PROCESS, 0)))
        own = os.sched_getaffinity(0)
        self.assertEqual(set(processors), {frozenset([processor]) for processor in own})
        self.assertEqual(len(processors), len(own))

    def test_threads_that_are_not_pinned(self):
        _, processors = self.observe(("option: ", "5"), ("option: ", "4"), ("Threads: ", "3"))
        self.assertEqual(processors, 3 * [frozenset(os.sched_getaffinity(0))])


if __name__ == "__main__":
    unittest.main(verbosity=1)
