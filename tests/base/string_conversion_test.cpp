#include "base/string_conversion.h"

#include <gtest/gtest.h>

#include "base/owners.h"

namespace catalogcore {

namespace {

CFReference<CFStringRef> Make(const char* text) {
  return CFReference<CFStringRef>(CFStringCreateWithCString(nullptr, text, kCFStringEncodingUTF8));
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

}  // namespace catalogcore
