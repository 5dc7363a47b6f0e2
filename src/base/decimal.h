// Parses decimal numbers in keys and records, with the rules of atoi.
#ifndef CATALOGCORE_BASE_DECIMAL_H_
#define CATALOGCORE_BASE_DECIMAL_H_

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace catalogcore {

// Skips leading white space, accepts a sign and reads digits up to the first other character; 0 without digits. Numbers
// outside 32 bits are clamped to the nearest 32-bit number.
inline std::int32_t DecimalValue(const char* text) {
  const long long value = std::strtoll(text, nullptr, 10);
  return static_cast<std::int32_t>(
      std::clamp<long long>(value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_DECIMAL_H_
