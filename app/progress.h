// What a person sees while work goes on: one line on a terminal, rewritten a few times a second; nothing elsewhere.
#ifndef CATALOGCORE_APP_PROGRESS_H_
#define CATALOGCORE_APP_PROGRESS_H_

#include <chrono>
#include <cstddef>
#include <string>

namespace catalogcore::app {

// Messages and the progress line share the terminal through this; everything on standard error goes through it. Not for
// two threads at a time.
class Progress {
 public:
  Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { Clear(); }

  // "Looking for pictures: 1,204".
  void Count(const std::string& what, std::size_t found);

  // "1,204 of 5,000, 12 a second, 5:16 left, beach.jpg", the name cut to what the line has room for. The rate counts
  // from the first call.
  void Step(std::size_t done, std::size_t total, const std::string& file);

  // "catalogcore: MESSAGE", above the progress line.
  void Say(const std::string& message);

  // Takes the line away.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  bool IsDue();
  void Show(const std::string& numbers, const std::string& name);  // the name gets the room that is left

  bool isOnTerminal_;
  bool isShown_ = false;
  Clock::time_point lastShown_{};
  Clock::time_point begin_{};
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PROGRESS_H_
