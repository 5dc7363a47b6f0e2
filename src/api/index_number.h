// Index numbers and the paths of the cells that they stand for: 1100000 is 1/10.
//
// A number packs the groups of a path from the top down, `digits` decimal digits for each group but the first, for four
// levels; levels that the path lacks are 0. -1 is the root ".".
#ifndef CATALOGCORE_API_INDEX_NUMBER_H_
#define CATALOGCORE_API_INDEX_NUMBER_H_

#include <string>

#include "base/idx_string.h"

namespace catalogcore {

inline constexpr int kIndexLevels = 4;
inline constexpr int kIndexDigits = 2;
inline constexpr int kRootNumber = -1;
inline constexpr int kFirstIndexNumber = 1000000;  // and below kEndIndexNumber
inline constexpr int kEndIndexNumber = 100000000;

// Whether a number stands for an index other than the root.
constexpr bool IsIndexNumber(int number) { return number >= kFirstIndexNumber && number < kEndIndexNumber; }

// The path of an index number, "." for the root. Empty when the number is out of range.
std::string IndexPath(int number);

// The number whose path is exactly `path`, -1 for ".". 0 when no number stands for the path.
int NumberOfIndexPath(const std::string& path);

// The path of a number; a group of 0 ends it, whatever follows. Negative when the number is out of range (`path` is
// then unchanged) or there is no memory.
int ConvertINTtoPath(CIDXString& path, int number, int digits);

// The number of a path. What is no number counts as 0, and groups are not checked for their range, so that the result
// may lie outside that of index numbers; it wraps in 32 bits. Returns the last group's value.
int ConvertPathtoINT(int& number, const CIDXString& path, int levels, int digits);

// The number behind the last "/", or of the whole text.
int GetLastIndexTag(const char* path);

}  // namespace catalogcore

#endif  // CATALOGCORE_API_INDEX_NUMBER_H_
