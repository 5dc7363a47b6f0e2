// Logistic regression with a quadratic penalty, by Newton's method: no randomness, one optimum.
#ifndef CATALOGCORE_TOOLS_LOGISTIC_REGRESSION_H_
#define CATALOGCORE_TOOLS_LOGISTIC_REGRESSION_H_

#include <cstddef>
#include <span>
#include <vector>

namespace catalogcore::tools {

struct Design {
  std::size_t columns = 0;      // the last column is 1 in every row and has no penalty
  std::vector<double> values;   // rows x columns
  std::vector<double> targets;  // of each row, 1 or 0
  std::vector<double> weights;  // of each row, above 0

  std::size_t Rows() const { return targets.size(); }
  std::span<const double> Row(std::size_t row) const { return {values.data() + row * columns, columns}; }
};

// The coefficient of each column: the minimum of the weighted logistic loss plus penalty / 2 x their squares.
// Throws std::runtime_error if the penalty is too small to compute a minimum.
std::vector<double> FitLogistic(const Design& design, double penalty);

}  // namespace catalogcore::tools

#endif  // CATALOGCORE_TOOLS_LOGISTIC_REGRESSION_H_
