#include "tools/logistic_regression.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>

namespace catalogcore::tools {
namespace {

constexpr int kMostSteps = 40;
constexpr int kMostHalvings = 20;  // of a step that overshoots
constexpr double kSmallStep = 1e-6;

double Dot(std::span<const double> a, std::span<const double> b) {
  return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

// log(1 + exp(x)) without overflow.
double SoftPlus(double x) { return std::max(x, 0.0) + std::log1p(std::exp(-std::abs(x))); }

double Loss(const Design& design, const std::vector<double>& coefficients, double penalty) {
  double loss = 0;
  for (std::size_t row = 0; row < design.Rows(); ++row) {
    const double score = Dot(design.Row(row), coefficients);
    loss += design.weights[row] * (SoftPlus(score) - design.targets[row] * score);
  }
  const std::span<const double> penalised(coefficients.data(), design.columns - 1);
  return loss + penalty / 2 * Dot(penalised, penalised);
}

// Gradient and lower half of the second derivatives.
struct Slope {
  std::vector<double> gradient;
  std::vector<double> curvature;  // columns x columns
};

Slope SlopeAt(const Design& design, const std::vector<double>& coefficients, double penalty) {
  const std::size_t columns = design.columns;
  Slope slope{std::vector<double>(columns, 0), std::vector<double>(columns * columns, 0)};
  for (std::size_t i = 0; i + 1 < columns; ++i) {
    slope.gradient[i] = penalty * coefficients[i];
    slope.curvature[i * columns + i] = penalty;
  }
  for (std::size_t row = 0; row < design.Rows(); ++row) {
    const auto values = design.Row(row);
    const double odds = 1 / (1 + std::exp(-Dot(values, coefficients)));
    const double error = design.weights[row] * (odds - design.targets[row]);
    const double bend = design.weights[row] * odds * (1 - odds);
    for (std::size_t i = 0; i < columns; ++i) slope.gradient[i] += error * values[i];
    if (bend < 1e-9) continue;
    for (std::size_t i = 0; i < columns; ++i) {
      const double factor = bend * values[i];
      double* const line = &slope.curvature[i * columns];
      for (std::size_t j = 0; j <= i; ++j) line[j] += factor * values[j];
    }
  }
  return slope;
}

// Solves curvature x step = gradient by Cholesky's decomposition, in place.
std::vector<double> Solve(Slope slope, std::size_t columns) {
  std::vector<double>& a = slope.curvature;
  for (std::size_t i = 0; i < columns; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      const double rest = a[i * columns + j] - Dot({&a[i * columns], j}, {&a[j * columns], j});
      if (i != j) {
        a[i * columns + j] = rest / a[j * columns + j];
      } else if (rest > 0) {
        a[i * columns + i] = std::sqrt(rest);
      } else {
        throw std::runtime_error("cannot fit: the penalty is too small");
      }
    }
  }
  std::vector<double>& x = slope.gradient;
  for (std::size_t i = 0; i < columns; ++i) {
    x[i] = (x[i] - Dot({&a[i * columns], i}, {x.data(), i})) / a[i * columns + i];
  }
  for (std::size_t i = columns; i > 0; --i) {
    x[i - 1] /= a[(i - 1) * columns + i - 1];
    for (std::size_t j = 0; j + 1 < i; ++j) x[j] -= a[(i - 1) * columns + j] * x[i - 1];
  }
  return std::move(x);
}

}  // namespace

std::vector<double> FitLogistic(const Design& design, double penalty) {
  std::vector<double> coefficients(design.columns, 0);
  double loss = Loss(design, coefficients, penalty);
  for (int step = 0; step < kMostSteps; ++step) {
    const std::vector<double> direction = Solve(SlopeAt(design, coefficients, penalty), design.columns);
    double length = 1;
    double best = loss;
    std::vector<double> next = coefficients;
    for (int halvings = 0; halvings < kMostHalvings; ++halvings, length /= 2) {
      for (std::size_t i = 0; i < next.size(); ++i) next[i] = coefficients[i] - length * direction[i];
      best = Loss(design, next, penalty);
      if (best < loss) break;
    }
    if (loss - best <= kSmallStep * loss) break;
    coefficients = next;
    loss = best;
  }
  return coefficients;
}

}  // namespace catalogcore::tools
