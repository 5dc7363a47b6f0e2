// Decimal numbers in keys and records, as atoi reads them.
#ifndef CATALOGCORE_BASE_DECIMAL_H_
#define CATALOGCORE_BASE_DECIMAL_H_

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace catalogcore {

// Leading blanks are skipped, a sign may follow, digits are read as far as they go; 0 without any. Numbers beyond 32
// bits become the nearest that there is.
inline std::int32_t DecimalValue(const char* text) {
  const long long value = std::strtoll(text, nullptr, 10);
  return static_cast<std::int32_t>(
      std::clamp<long long>(value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_DECIMAL_H_
