// Wall-clock time and waiting.
#ifndef CATALOGCORE_BASE_CLOCK_H_
#define CATALOGCORE_BASE_CLOCK_H_

#include <cstdint>

namespace catalogcore {

// The wall clock in seconds since the system's epoch, to the microsecond. Only differences mean something.
double GetTime();

// Sleeps for one second, whatever the argument.
void SleepFunction(std::int32_t ignored);

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_CLOCK_H_
