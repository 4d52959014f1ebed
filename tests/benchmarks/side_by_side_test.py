# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""When two CSV files hold the same. The folder of the script is the only argument."""
import os
import sys
import tempfile
import unittest

sys.path.insert(0, sys.argv.pop())
import side_by_side

HEADER = "frame,className,coord1\n"


class TwoCsvFiles(unittest.TestCase):
    def are_the_same(self, *texts):
        with tempfile.TemporaryDirectory() as folder:
            paths = [os.path.join(folder, str(number)) for number in range(len(texts))]
            for path, text in zip(paths, texts):
                with open(path, "w", encoding="utf-8") as file:
                    file.write(HEADER + text)
            return side_by_side.same_csv(*paths)

    def test_are_the_same_where_coordinates_read_back_as_the_same_float(self):
        self.assertTrue(self.are_the_same("1,human,0.1\n1,,\n", "1,human,0.100000001\n1,,\n"))

    def test_differ_where_a_coordinate_does(self):
        self.assertFalse(self.are_the_same("1,human,0.1\n", "1,human,0.1000001\n"))

    def test_differ_where_a_coordinate_is_missing(self):
        self.assertFalse(self.are_the_same("1,human,0.1\n", "1,human,\n"))
        self.assertFalse(self.are_the_same("1,human,\n", "1,human,0.1\n"))

    def test_differ_where_another_field_does(self):
        self.assertFalse(self.are_the_same("1,human,0.1\n", "1,car,0.1\n"))

    def test_differ_where_a_line_is_missing(self):
        self.assertFalse(self.are_the_same("1,human,0.1\n", ""))


unittest.main()
