#include "base/string_conversion.h"

#include <cstdlib>

#include "base/owners.h"

namespace catalogcore {

std::int32_t CopyIDXSTRtoCIDXString(CIDXString& target, IDXSTR source) {
  if (!source || !*source) return IDXERR_FAILED;
  const CFRange all = CFRangeMake(0, CFStringGetLength(*source));
  CFIndex size = 0;
  CFStringGetBytes(*source, all, kCFStringEncodingUTF8, 0, false, nullptr, 0, &size);
  const HeapBlock<char> text(static_cast<char*>(std::malloc(static_cast<std::size_t>(size) + 1)));
  if (!text) return IDXERR_FAILED;
  if (!CFStringGetCString(*source, text.get(), size + 1, kCFStringEncodingUTF8)) return IDXERR_FAILED;
  return target.CopyString(text.get(), -1) > 0 ? IDX_OK : IDXERR_MEMORY;
}

std::int32_t CopyCIDXStringtoIDXSTR(IDXSTR target, const CIDXString& source) {
  if (!target) return IDX_OK;
  const CFStringRef string = CFStringCreateWithCString(kCFAllocatorDefault, source.Text(), kCFStringEncodingUTF8);
  if (string) *target = string;
  return IDX_OK;
}

}  // namespace catalogcore
