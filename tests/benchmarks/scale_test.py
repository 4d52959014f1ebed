# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Which curves of the cost count as linear. The folder of the script is the only argument."""
import sys
import unittest

sys.path.insert(0, sys.argv.pop())
import scale


class ACurve(unittest.TestCase):
    numbers = [1, 10, 100, 1000]

    def is_linear(self, cost):
        return scale.is_linear(self.numbers, [cost(number) for number in self.numbers])

    def test_is_linear_where_each_item_costs_the_same(self):
        self.assertTrue(self.is_linear(lambda number: 500 + 70 * number))

    def test_is_linear_where_items_cost_less_and_less(self):
        self.assertTrue(self.is_linear(lambda number: 500 + 70 * number ** 0.5))

    def test_is_linear_where_nothing_grows(self):
        self.assertTrue(scale.is_linear(self.numbers, [50_000, 50_001, 50_002, 50_900]))

    def test_is_not_linear_where_each_item_looks_at_the_others(self):
        self.assertFalse(self.is_linear(lambda number: 500 + 70 * number + number * number))


unittest.main()
