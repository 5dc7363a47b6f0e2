#include "bench/support/plot.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

namespace catalogcore {

namespace {

constexpr double kWidth = 320, kHeight = 240;                       // of a panel
constexpr double kLeft = 52, kRight = 14, kTop = 46, kBottom = 44;  // around its axes
constexpr int kColumns = 3;

// Readable on light and on dark grounds; the two sides differ in dash and mark, too.
constexpr char kStyle[] =
    "<style>text{font:12px sans-serif;fill:#333}.title{font-weight:bold}.grid{stroke:#ccc}.ground{fill:#fff}"
    "path{fill:none;stroke-width:2}.ours{stroke:#0b62a8}.other{stroke:#b8500a;stroke-dasharray:5 3}"
    "circle{fill:#0b62a8}rect.mark{fill:#b8500a}"
    "@media(prefers-color-scheme:dark){text{fill:#ddd}.grid{stroke:#444}.ground{fill:#161b22}"
    ".ours{stroke:#6cb6ff}.other{stroke:#f0a060}circle{fill:#6cb6ff}rect.mark{fill:#f0a060}}</style>\n";

// Whole powers of ten around some values.
struct Axis {
  void Include(double value) {
    low = std::min(low, std::floor(std::log10(value)));
    high = std::max(high, std::ceil(std::log10(value)));
  }
  // From 0 at the low end to 1 at the high end.
  double At(double value) const { return (std::log10(value) - low) / (high - low); }
  double low = 100, high = -100;
};

struct Panel {
  std::string title, alternative;
  std::map<double, Ratio> points;  // by number of images
};

// The number behind the row's name if it is `operation` and a number; 0 if not.
double ImagesOf(const std::string& row, const std::string& operation) {
  const std::string prefix = operation + "_";
  if (row.compare(0, prefix.size(), prefix) != 0) return 0;
  const std::string digits = row.substr(prefix.size());
  return digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos ? 0 : std::stod(digits);
}

std::string Quantity(double power, bool isTime) {
  const char* const times[] = {"1 ns", "10 ns", "100 ns", "1 \xC2\xB5s", "10 \xC2\xB5s", "100 \xC2\xB5s", "1 ms"};
  const char* const counts[] = {"1", "10", "100", "1,000", "10,000", "100,000", "1 M", "10 M", "100 M"};
  const auto at = static_cast<std::size_t>(power);
  return isTime ? (at < std::size(times) ? times[at] : "") : (at < std::size(counts) ? counts[at] : "");
}

class Drawing {
 public:
  Drawing(std::ostream& out, double left, double top, Axis images, Axis time)
      : out_(out), left_(left + kLeft), top_(top + kTop), images_(images), time_(time) {}

  void Text(double x, double y, const char* anchor, const std::string& text, const char* kind = "") {
    out_ << "<text class=\"" << kind << "\" text-anchor=\"" << anchor << "\" x=\"" << left_ + x << "\" y=\"" << top_ + y
         << "\">" << text << "</text>\n";
  }

  void Grid() {
    for (double power = images_.low; power <= images_.high; ++power) {
      const double x = images_.At(std::pow(10, power)) * kPlotWidth;
      Line(x, 0, x, kPlotHeight);
      Text(x, kPlotHeight + 16, "middle", Quantity(power, false));
    }
    for (double power = time_.low; power <= time_.high; ++power) {
      const double y = (1 - time_.At(std::pow(10, power))) * kPlotHeight;
      Line(0, y, kPlotWidth, y);
      Text(-6, y + 4, "end", Quantity(power, true));
    }
    Text(kPlotWidth / 2, kPlotHeight + 32, "middle", "images in the catalogue");
  }

  void Curve(const Panel& panel, bool isOurs) {
    std::ostringstream path, marks;
    for (const auto& [count, row] : panel.points) {
      const double x = left_ + images_.At(count) * kPlotWidth;
      const double y = top_ + (1 - time_.At(isOurs ? row.ours : row.other)) * kPlotHeight;
      path << (path.str().empty() ? "M" : "L") << x << " " << y;
      if (isOurs) {
        marks << "<circle cx=\"" << x << "\" cy=\"" << y << "\" r=\"4\"/>";
      } else {
        marks << "<rect class=\"mark\" x=\"" << x - 3.5 << "\" y=\"" << y - 3.5 << "\" width=\"7\" height=\"7\"/>";
      }
    }
    out_ << "<path class=\"" << (isOurs ? "ours" : "other") << "\" d=\"" << path.str() << "\"/>" << marks.str() << "\n";
  }

  // What the two kinds of line stand for.
  void Legend(const std::string& alternative) {
    out_ << "<circle cx=\"" << left_ + 4 << "\" cy=\"" << top_ - 10 << "\" r=\"4\"/><rect class=\"mark\" x=\""
         << left_ + 76 << "\" y=\"" << top_ - 14 << "\" width=\"7\" height=\"7\"/>\n";
    Text(14, -6, "start", "this store");
    Text(90, -6, "start", alternative);
  }

 private:
  static constexpr double kPlotWidth = kWidth - kLeft - kRight, kPlotHeight = kHeight - kTop - kBottom;

  void Line(double x1, double y1, double x2, double y2) {
    out_ << "<line class=\"grid\" x1=\"" << left_ + x1 << "\" y1=\"" << top_ + y1 << "\" x2=\"" << left_ + x2
         << "\" y2=\"" << top_ + y2 << "\"/>\n";
  }

  std::ostream& out_;
  double left_, top_;
  Axis images_, time_;
};

std::vector<Panel> PanelsOf(const std::vector<Ratio>& rows, const std::vector<std::string>& operations) {
  std::vector<Panel> panels;
  for (const std::string& operation : operations) {
    Panel panel{operation, "", {}};
    for (const Ratio& row : rows) {
      const double count = ImagesOf(row.name, operation);
      if (count == 0) continue;
      panel.points[count] = row;
      panel.alternative = row.alternative;
    }
    std::replace(panel.title.begin(), panel.title.end(), '_', ' ');
    if (panel.points.size() >= 2) panels.push_back(panel);
  }
  return panels;
}

}  // namespace

bool WritePlot(const std::vector<Ratio>& rows, const std::vector<std::string>& operations, const std::string& file) {
  const std::vector<Panel> panels = PanelsOf(rows, operations);
  if (panels.empty()) return true;
  Axis images, time;  // the same for all panels, so that they compare
  for (const Panel& panel : panels) {
    for (const auto& [count, row] : panel.points) {
      images.Include(count);
      time.Include(row.ours);
      time.Include(row.other);
    }
  }
  const auto rowsOfPanels = static_cast<double>((panels.size() + kColumns - 1) / kColumns);
  std::ofstream out(file);
  out << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << kWidth * kColumns << " "
      << kHeight * rowsOfPanels
      << "\" role=\"img\"><title>Time of an operation over the size of the catalogue</title>\n"
      << kStyle << "<rect class=\"ground\" width=\"100%\" height=\"100%\"/>\n";
  for (std::size_t i = 0; i < panels.size(); ++i) {
    const double left = static_cast<double>(i % kColumns) * kWidth, top = static_cast<double>(i / kColumns) * kHeight;
    Drawing drawing(out, left, top, images, time);
    drawing.Text(0, -26, "start", panels[i].title, "title");
    drawing.Grid();
    drawing.Curve(panels[i], false);
    drawing.Curve(panels[i], true);
    drawing.Legend(panels[i].alternative);
  }
  out << "</svg>\n";
  out.close();
  return static_cast<bool>(out);
}

}  // namespace catalogcore
