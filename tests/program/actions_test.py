"""The actions of the real program and their options: what is refused, and how."""

import unittest

from kelvara_program import ProgramTest


class Actions(ProgramTest):
    def test_unknown_actions(self):
        for action in ("nonsense", "nonsense:1", "Bench", "-bench", "25m", "pi"):
            self.assert_refused("Invalid Parameter: " + action.split(":")[0] + "\n", action, exit_code=1)
        self.assert_refused("Invalid Parameter: \n", "", exit_code=1)
        self.assert_refused("Invalid Parameter: \n", ":bench", exit_code=1)

    def test_only_the_key_names_an_action(self):
        self.assert_refused("\nBenchmark Pi:\n", "bench:1", exit_code=1)
        self.assert_refused("\nCustom Compute a Constant\n", "custom:", exit_code=1)

    def test_what_is_not_there_yet_says_so(self):
        missing = {
            "benchio": "The I/O performance analysis",
        }
        for action, name in missing.items():
            self.assert_refused(name + " is not available in this build yet.", action)

    def test_config_asks_for_its_file(self):
        self.assert_refused("Please specify a config file.", "config")

    def test_a_leading_flag_behind_the_action_is_an_option(self):
        self.assert_refused("Invalid Parameter: skip-warnings\n", "custom", "pi", "skip-warnings", exit_code=1)
        self.assert_refused("Invalid Command: skip-warnings\n", "bench", "skip-warnings")


class Bench(ProgramTest):
    def assert_accepted(self, *arguments):
        """What follows is looked at, and refused: no benchmark runs."""
        self.assert_refused("Invalid Parameter: -end\n", "bench", *arguments, "-end", exit_code=1)

    def test_every_size(self):
        for size in ("25m", "50m", "100m", "250m", "500m", "1b", "2.5b", "5b", "10b", "25b", "50b", "100b", "250b",
                     "500b", "1t", "2.5t", "1M", "512M", "1G", "128G"):
            self.assert_accepted(size)

    def test_the_value_of_a_size_is_left_alone(self):
        self.assert_accepted("25m:nonsense")

    def test_every_option(self):
        self.assert_accepted("-PF:none", "-MA:malloc", "-TD", "2.5b:16")
        self.assert_refused("Invalid Parallel Framework: openmp", "bench", "-PF:openmp", "25m")
        self.assert_refused("Invalid Memory Allocator: heap", "bench", "-MA:heap", "25m")
        self.assert_refused("Invalid Parallel Framework: ", "bench", "-PF", "25m")

    def test_without_a_size(self):
        self.assert_refused("No benchmark size selected.", "bench", "-PF:none")
        self.assert_refused("No benchmark size selected.", "bench", "-MA:malloc")

    def test_unknown_sizes_and_options(self):
        for size in ("3b", "25", "25M", "1B", "nonsense:1", "m"):
            self.assert_refused("Invalid Command: " + size + "\n", "bench", size)
        self.assert_refused("Invalid Parameter: -dec\n", "bench", "-dec:100", exit_code=1)
        self.assert_refused("Invalid Parameter: -M\n", "bench", "25m", "-M:4G", exit_code=1)

    def test_the_task_decomposition_stands_behind_the_next_argument(self):
        bounds = "Task decomposition must be between 1 and 65,536."
        self.assert_refused("Expected more parameters.", "bench", "-TD:8")
        self.assert_refused("Uncaught std exception: Expected more parameters.", "bench", "25m", "-TD:8")
        self.assert_accepted("-TD:8", "25m:4")
        self.assert_accepted("-TD", "25m:65536x")
        # The option's own value is not looked at: it would have been a good one here, and a bad one below.
        self.assert_refused(bounds, "bench", "-TD:8", "25m:0")
        self.assert_accepted("-TD:0", "25m:4")
        # The following argument is an option itself here, and takes its value as well.
        self.assert_refused("Invalid Parallel Framework: 4", "bench", "-TD", "-PF:4", "25m")
        self.assert_refused("Expected more parameters.", "bench", "-TD", "-TD:4")
        # What it stands behind has to be a size all the same.
        self.assert_refused("Invalid Command: 3b:4\n", "bench", "-TD", "3b:4")


class Custom(ProgramTest):
    def test_only_exact_keys_are_options(self):
        self.assert_refused("Invalid Parameter: DEC\n", "custom", "pi", "DEC:1000", exit_code=1)
        self.assert_refused("Invalid Constant: \n", "custom", "")


if __name__ == "__main__":
    unittest.main(verbosity=1)
