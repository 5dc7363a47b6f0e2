// Converts between index numbers and the paths of indexes: 1100000 is 1/10.
//
// A number holds the components of a path ("groups") from the top down. Each group except the first has `digits` decimal
// digits. There are four levels, and missing levels are 0. -1 is the root ".".
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

// Whether the number is in the range of index numbers, which excludes the root.
constexpr bool IsIndexNumber(int number) { return number >= kFirstIndexNumber && number < kEndIndexNumber; }

// Returns the path of an index number, "." for the root. Returns empty text if the number is out of range.
std::string IndexPath(int number);

// Returns the number whose path is exactly `path`, -1 for ".". Returns 0 if no number has this path.
int NumberOfIndexPath(const std::string& path);

// Sets `path` to the path of a number. A group of 0 ends the path, whatever follows. Returns a negative number, with
// `path` unchanged, if the number is out of range or memory cannot be allocated.
int ConvertINTtoPath(CIDXString& path, int number, int digits);

// Sets `number` to the number of a path and returns the last group's value. A group that is not a number counts as 0.
// Groups are not checked for their range, so that the number may be out of range; it wraps in 32 bits.
int ConvertPathtoINT(int& number, const CIDXString& path, int levels, int digits);

// The number after the last "/", or of the whole text.
int GetLastIndexTag(const char* path);

}  // namespace catalogcore

#endif  // CATALOGCORE_API_INDEX_NUMBER_H_
