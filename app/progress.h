// Messages and the progress line on standard error. The progress line is rewritten a few times a second, on a terminal
// only.
#ifndef CATALOGCORE_APP_PROGRESS_H_
#define CATALOGCORE_APP_PROGRESS_H_

#include <chrono>
#include <cstddef>
#include <string>

namespace catalogcore::app {

// Everything that the command prints to standard error goes through this class. One thread at a time.
class Progress {
 public:
  Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { Clear(); }

  // "Looking for pictures: 1,204".
  void Count(const std::string& what, std::size_t found);

  // "1,204 of 5,000, 12 a second, 5:16 left, beach.jpg", with the name cut to the width of the terminal. The rate is
  // the mean since the first call.
  void Step(std::size_t done, std::size_t total, const std::string& file);

  // "catalogcore: MESSAGE", above the progress line.
  void Say(const std::string& message);

  // Removes the progress line.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  bool IsDue();
  void Show(const std::string& numbers, const std::string& name);  // cuts the name

  bool isOnTerminal_;
  bool isShown_ = false;
  Clock::time_point lastShown_{};
  Clock::time_point begin_{};
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PROGRESS_H_
