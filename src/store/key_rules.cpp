#include <cstring>

#include "store/index_data.h"

namespace catalogcore {

namespace {

// Beyond any use: longer than a path may be, or deeper. A bound keeps what one record of a file can cost
// small.
constexpr std::int32_t kMaxLevels[kTreeCount] = {64, 512};

}  // namespace

std::int32_t CIndexData::IsValidKey(std::int32_t tree, const CIDXString& key) {
  const char* const text = key.Text();
  if (*text == 0) return tree == kFolderTree ? 1 : 0;
  if (tree == kIndexTree && *text == '/') return 0;
  std::int32_t levels = *text == '/' ? 0 : 1;
  const char* at = text;
  for (; *at != 0; ++at) {
    if (*at != '/') continue;
    if (at[1] == '/' || at[1] == 0) return 0;
    ++levels;
  }
  return at - text <= kMaxKeyBytes && levels <= kMaxLevels[tree] ? 1 : 0;
}

}  // namespace catalogcore
