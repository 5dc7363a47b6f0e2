#include "base/string_conversion.h"

#include <gtest/gtest.h>

#include "base/cf_reference.h"
#include "tests/support/failing_allocator.h"

namespace {

CFReference<CFStringRef> Make(const char* text) {
  return CFReference<CFStringRef>(CFStringCreateWithCString(nullptr, text, kCFStringEncodingUTF8));
}

TEST(StringConversion, ReadsTheApplicationsString) {
  CIDXString target;
  const auto text = Make("sk\xC3\xA5l \xF0\x9F\x93\xB7");
  CFStringRef variable = text.get();
  EXPECT_EQ(CopyIDXSTRtoCIDXString(target, &variable), IDX_OK);
  EXPECT_STREQ(target.Text(), "sk\xC3\xA5l \xF0\x9F\x93\xB7");
  EXPECT_EQ(CFGetRetainCount(text.get()), 1);

  CFStringRef nothing = nullptr;
  EXPECT_EQ(CopyIDXSTRtoCIDXString(target, &nothing), IDXERR_FAILED);
  {
    const FailingAllocation noMemory(0);
    EXPECT_EQ(CopyIDXSTRtoCIDXString(target, &variable), IDXERR_FAILED);
  }
  EXPECT_EQ(target.Length(), 10);

  const FailingAllocation noMemory(1);
  CIDXString fresh;
  EXPECT_EQ(CopyIDXSTRtoCIDXString(fresh, &variable), IDXERR_MEMORY);
}

TEST(StringConversion, HandsOutANewStringOrLeavesTheVariable) {
  const auto before = Make("before");
  CFStringRef variable = before.get();
  CIDXString source;
  source.CopyString("not UTF-8: \xFF");
  EXPECT_EQ(CopyCIDXStringtoIDXSTR(&variable, source), IDX_OK);
  EXPECT_EQ(variable, before.get());
  source.CopyString("after");
  EXPECT_EQ(CopyCIDXStringtoIDXSTR(&variable, source), IDX_OK);
  const CFReference<CFStringRef> handedOut(variable);
  ASSERT_NE(variable, before.get());
  EXPECT_EQ(CFStringGetLength(variable), 5);
  EXPECT_EQ(CFGetRetainCount(variable), 1);
  EXPECT_EQ(CFGetRetainCount(before.get()), 1);
}

}  // namespace
