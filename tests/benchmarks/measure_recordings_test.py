# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""What the document shows of an hour of recordings. The folder of the script is the only argument."""
import sys
import unittest

sys.path.insert(0, sys.argv.pop())
import measure_recordings


class TheFiguresOfAnHour(unittest.TestCase):
    def test_have_a_row_for_each_subcommand_and_say_how_much_a_camera_writes(self):
        text = measure_recordings.figures(72_000_000, {"inspect": 1.26, "csv": 2.849}, {"merge": 7100, "inspect": 8450, "csv": 9000})
        self.assertEqual(text.splitlines()[2:], [
            "| `merge` | 7.1 |  |",
            "| `inspect` | 8.4 | 1.3 |",
            "| `export --format csv` | 9.0 | 2.8 |",
            "",
            "Each camera's hour takes 72.0 MB, 2000 bytes for a frame; of these, 1.2 MB are the index."])


unittest.main()
