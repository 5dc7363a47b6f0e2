// Draws the times of operations over the size of the catalogue.
#ifndef CATALOGCORE_BENCH_SUPPORT_PLOT_H_
#define CATALOGCORE_BENCH_SUPPORT_PLOT_H_

#include <string>
#include <vector>

#include "bench/support/ratios.h"

namespace catalogcore {

// Writes an SVG with one panel for each of `operations`, nanoseconds over images, both axes logarithmic. An operation's
// points are the rows of its name, "_" and a number of images; what has fewer than two is left out. False if the file
// cannot be written.
bool WritePlot(const std::vector<Ratio>& rows, const std::vector<std::string>& operations, const std::string& file);

}  // namespace catalogcore

#endif  // CATALOGCORE_BENCH_SUPPORT_PLOT_H_
