# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Which counts the comparison with the committed ones accepts. The folder of the script is the only argument."""
import os
import sys
import tempfile
import unittest

sys.path.insert(0, sys.argv.pop())
import check_counts


class CommittedCounts(unittest.TestCase):
    committed = {"frame/12": (1000, 100, 5000)}

    def excesses(self, instructions, allocations, size):
        return list(check_counts.excesses(self.committed, {"frame/12": (instructions, allocations, size)}))

    def test_accept_what_takes_less_or_two_percent_more(self):
        self.assertEqual(self.excesses(900, 90, 4000), [])
        self.assertEqual(self.excesses(1020, 102, 5100), [])

    def test_name_the_pipeline_and_each_unit_that_is_exceeded(self):
        self.assertEqual(self.excesses(1021, 100, 5000), ["frame/12: 1021 instructions, committed are 1000"])
        self.assertEqual(self.excesses(1000, 103, 5101), ["frame/12: 103 allocations, committed are 100",
                                                          "frame/12: 5101 bytes, committed are 5000"])

    def test_are_read_as_they_were_written(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "counts.txt")
            check_counts.write(path, ["# a line that explains"], self.committed)
            self.assertEqual(check_counts.read(path), (["# a line that explains"], self.committed))

    def test_of_a_pipeline_that_was_not_built_end_the_comparison(self):
        with tempfile.TemporaryDirectory() as folder:
            program = os.path.join(folder, "count_allocations")
            with open(program, "w", encoding="utf-8") as file:
                file.write("#!/bin/sh\necho parse/12 1 2\n")
            os.chmod(program, 0o700)
            with self.assertRaisesRegex(SystemExit, "these programs do not have frame/12"):
                check_counts.measure(folder, ["parse/12", "frame/12"])


unittest.main()
