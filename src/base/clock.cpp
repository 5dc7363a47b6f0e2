#include "base/clock.h"

#include <chrono>
#include <thread>

namespace catalogcore {

double GetTime() {
  using std::chrono::microseconds;
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return static_cast<double>(std::chrono::duration_cast<microseconds>(now).count()) * 0.000001;
}

void SleepFunction(std::int32_t) { std::this_thread::sleep_for(std::chrono::seconds(1)); }

}  // namespace catalogcore
