#include "app/progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "app/text.h"

namespace catalogcore::app {
namespace {

constexpr std::chrono::milliseconds kBetweenLines(100);
constexpr std::size_t kUsualColumns = 80;

bool IsTerminal() {
  const char* const kind = std::getenv("TERM");
  return isatty(STDERR_FILENO) != 0 && kind && std::string_view(kind) != "dumb";
}

std::size_t Columns() {
  winsize size{};
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualColumns;
  return size.ws_col;
}

std::string Duration(double seconds) {
  const auto all = static_cast<long>(std::fmin(seconds, 359999));
  char text[32];
  if (all >= 3600) {
    std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", all / 3600, all / 60 % 60, all % 60);
  } else {
    std::snprintf(text, sizeof text, "%ld:%02ld", all / 60, all % 60);
  }
  return text;
}

std::string Rate(double perSecond) {
  char text[32];
  std::snprintf(text, sizeof text, perSecond < 10 ? "%.1f" : "%.0f", perSecond);
  return text;
}

}  // namespace

Progress::Progress() : isOnTerminal_(IsTerminal()) {}

bool Progress::IsDue() {
  const Clock::time_point now = Clock::now();
  if (!isOnTerminal_ || (isShown_ && now - lastShown_ < kBetweenLines)) return false;
  lastShown_ = now;
  return true;
}

void Progress::Count(const std::string& what, std::size_t found) {
  if (IsDue()) Show(what + ": " + Grouped(found), "");
}

void Progress::Step(std::size_t done, std::size_t total, const std::string& file) {
  if (begin_ == Clock::time_point()) begin_ = Clock::now();
  if (!IsDue()) return;
  std::string line = Grouped(done) + " of " + Grouped(total);
  const double seconds = std::chrono::duration<double>(Clock::now() - begin_).count();
  if (done > 0 && seconds > 1) {
    const double rate = static_cast<double>(done) / seconds;
    line += ", " + Rate(rate) + " a second, " + Duration(static_cast<double>(total - done) / rate) + " left";
  }
  Show(line + ", ", Printable(std::filesystem::path(file).filename().string()));
}

void Progress::Show(const std::string& numbers, const std::string& name) {
  const std::size_t columns = Columns() - 1;
  const std::size_t left = columns - std::min(columns, TextWidth(numbers));
  std::fprintf(stderr, "\r%s\x1B[K", Shortened(numbers + Shortened(name, left), columns).c_str());
  std::fflush(stderr);
  isShown_ = true;
}

void Progress::Say(const std::string& message) {
  Clear();
  std::fprintf(stderr, "catalogcore: %s\n", Printable(message).c_str());
}

void Progress::Clear() {
  if (isShown_) std::fputs("\r\x1B[K", stderr);
  isShown_ = false;
}

}  // namespace catalogcore::app
