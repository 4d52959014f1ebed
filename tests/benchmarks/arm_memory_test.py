# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""What counts as the memory of an emulated program. The folder of the script is the only argument."""
import sys
import unittest

sys.path.insert(0, sys.argv.pop())
import arm_memory


def area(first, path, resident, anonymous):
    return (f"{first:x}-{first + 0x10000:x} r--p 00000000 fe:00 7{' ' * 20}{path}\n"
            f"Size:                 64 kB\nRss:                  {resident} kB\nAnonymous:            {anonymous} kB\n"
            "THPeligible:    0\nVmFlags: rd mr mw me sd\n")


class AnEmulatedProgram(unittest.TestCase):
    first, last = arm_memory.FIRST, arm_memory.FIRST + arm_memory.SIZE - 0x10000

    def resident(self, *areas):
        return {group: size for group, size in arm_memory.resident("".join(areas)).items() if size}

    def test_has_the_memory_in_its_range_of_addresses(self):
        self.assertEqual(self.resident(area(self.first, "", 8, 8), area(self.last, "", 4, 4)), {"not of files": 12})

    def test_does_not_have_that_of_the_emulator(self):
        self.assertEqual(self.resident(area(self.first - 0x10000, "/usr/bin/qemu-arm-static", 40, 8),
                                       area(self.first + arm_memory.SIZE, "[heap]", 60, 60)), {})

    def test_has_written_pages_of_a_file_as_memory_of_its_own(self):
        self.assertEqual(self.resident(area(self.first, "/lib/libc.so.6", 64, 12)),
                         {"not of files": 12, "files of the C and C++ libraries": 52})

    def test_has_files_by_their_names_with_spaces_too(self):
        self.assertEqual(self.resident(area(self.first, "/a folder/tarnvod", 32, 0), area(self.last, "/b/libz.so.1", 8, 0)),
                         {"files of the command and of the library": 32, "files of other libraries": 8})


unittest.main()
