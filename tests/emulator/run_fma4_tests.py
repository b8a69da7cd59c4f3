#!/usr/bin/env python3
"""Runs the tests of the FMA4 kernels, which no processor of today has, in an emulator of one that has.

    run_fma4_tests.py PROGRAM FIRST_PROCESS FOLDER CACHE

PROGRAM is a test program linked statically; every test that is instantiated for each instruction-set level
(tests/support/levels.h) runs on its FMA4 level, together with those that compare all levels. FIRST_PROCESS is the
program of first_process.cpp, FOLDER is for this run's files, CACHE for the kernel. Exit status: 0 when they pass, 77 when this machine has no
emulator, 1 otherwise.
"""
import os
import re
import subprocess
import sys

import boot_image
import bochs

PROCESSOR = "zambezi"
# The emulator is a thousand times slower than a processor: what only repeats a kernel with more rows, or
# with multipliers between the first and the last, runs on the other levels alone, and so do the transforms that
# have no FMA4 kernels.
LEFT_OUT = "*WhenLarge/*:*Multiplier3:*Multiplier5:*VstProduct.OnesAtTheLargestSizeOfEveryRow/*:Ntt*"
FILTER = f"EveryLevel/*/FMA4*:*LevelsAgree*:-{LEFT_OUT}"
END = r"The program ended with .*\."
SECONDS = 1000
SKIPPED = 77


def prepared(program, folder):
    """The program without debugging information, with the instructions that Bochs misreads flipped."""
    stripped, copy = os.path.join(folder, "stripped"), os.path.join(folder, "program")
    subprocess.run(["strip", "-o", stripped, program], check=True)
    tool = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "flip-fma4.py")
    subprocess.run([sys.executable, "-B", tool, stripped, copy], check=True)
    return copy


def verdict(text):
    """None when the tests have run and passed, what is wrong otherwise."""
    status = re.search(END, text)
    if not status or not status.group().endswith("exit code 0."):
        return "the test program did not end well"
    passed = re.search(r"\[  PASSED  \] (\d+) tests?\.", text)
    if not passed or int(passed.group(1)) == 0:
        return "no test has run"
    if "FAILED" in text or "SKIPPED" in text:
        return "a test failed or was skipped: the emulated processor must run them all"
    print(f"{passed.group(1)} tests passed on the emulated {PROCESSOR}")
    return None


def main():
    program, first_process, folder, cache = (os.path.abspath(path) for path in sys.argv[1:])
    os.makedirs(folder, exist_ok=True)
    try:
        image = boot_image.build(folder, first_process, prepared(program, folder), [f"--gtest_filter={FILTER}"], cache)
        text = bochs.run(folder, image, PROCESSOR, END, SECONDS)
    except boot_image.Unavailable as reason:
        print("Skipped:", reason)
        return SKIPPED
    except TimeoutError as error:
        print(error)
        print("The emulator did not reach the end of the tests.")
        return 1
    wrong = verdict(text)
    if wrong:
        print(text)
        print("Failed:", wrong)
        return 1
    return 0


if __name__ == "__main__":
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    sys.exit(main())
