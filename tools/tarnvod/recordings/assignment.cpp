// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/assignment.h"

#include <algorithm>
#include <limits>

namespace tarn::command {
namespace {

/**
 * The Hungarian method with potentials, on a square matrix of costs. Rows and columns count from 1; 0 stands for none.
 */
class HungarianMethod {
 public:
  HungarianMethod(const GainMatrix& gains, std::size_t size)
      : gains_(gains), size_(size), rowPotential_(size + 1), columnPotential_(size + 1), rowOf_(size + 1) {
    for (std::size_t row = 1; row <= size_; ++row) {
      assign(row);
    }
  }

  /** The row of each column. */
  const std::vector<std::size_t>& rows() const { return rowOf_; }

 private:
  double cost(std::size_t row, std::size_t column) const {
    const bool isReal = row <= gains_.size() && column <= gains_[row - 1].size();
    return isReal ? -gains_[row - 1][column - 1] : 0;
  }

  /** Finds the cheapest way to give the row a column, moving other rows to other columns. */
  void assign(std::size_t row) {
    std::vector<double> least(size_ + 1, std::numeric_limits<double>::infinity());
    std::vector<bool> isReached(size_ + 1);
    std::vector<std::size_t> before(size_ + 1);
    rowOf_[0] = row;
    std::size_t column = 0;
    while (rowOf_[column] != 0) {
      isReached[column] = true;
      const std::size_t next = reach(column, isReached, least, before);
      shiftPotentials(least[next], isReached, least);
      column = next;
    }
    for (; column != 0; column = before[column]) {
      rowOf_[column] = rowOf_[before[column]];
    }
  }

  std::size_t reach(std::size_t from, const std::vector<bool>& isReached, std::vector<double>& least,
                    std::vector<std::size_t>& before) const {
    std::size_t nearest = 0;
    for (std::size_t column = 1; column <= size_; ++column) {
      if (isReached[column]) {
        continue;
      }
      const double reduced = cost(rowOf_[from], column) - rowPotential_[rowOf_[from]] - columnPotential_[column];
      if (reduced < least[column]) {
        least[column] = reduced;
        before[column] = from;
      }
      if (nearest == 0 || least[column] < least[nearest]) {
        nearest = column;
      }
    }
    return nearest;
  }

  void shiftPotentials(double by, const std::vector<bool>& isReached, std::vector<double>& least) {
    for (std::size_t column = 0; column <= size_; ++column) {
      if (isReached[column]) {
        rowPotential_[rowOf_[column]] += by;
        columnPotential_[column] -= by;
      } else {
        least[column] -= by;
      }
    }
  }

  const GainMatrix& gains_;
  const std::size_t size_;
  std::vector<double> rowPotential_;
  std::vector<double> columnPotential_;
  std::vector<std::size_t> rowOf_;
};

}  // namespace

std::vector<std::pair<std::size_t, std::size_t>> bestAssignment(const GainMatrix& gains) {
  const std::size_t columns = gains.empty() ? 0 : gains.front().size();
  const HungarianMethod method(gains, std::max(gains.size(), columns));
  std::vector<std::pair<std::size_t, std::size_t>> pairs;
  for (std::size_t column = 1; column <= columns; ++column) {
    const std::size_t row = method.rows()[column];
    if (row <= gains.size() && gains[row - 1][column - 1] > 0) {
      pairs.emplace_back(row - 1, column - 1);
    }
  }
  return pairs;
}

}  // namespace tarn::command
