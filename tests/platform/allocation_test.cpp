// Every allocation of a read and a write fails once, in this library and in expat; nothing may leak or stay half-done.
#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <string_view>

#include "tests/platform/property_list_samples.h"
#include "tests/support/failing_allocator.h"

namespace {

CFDataRef Data(std::string_view text) {
  return CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(text.data()), static_cast<CFIndex>(text.size()));
}

// Reads, changes and writes. Whether all of it was done.
bool Rewrite(CFDataRef xml) {
  const auto list = static_cast<CFDictionaryRef>(
      CFPropertyListCreateFromXMLData(nullptr, xml, kCFPropertyListMutableContainers, nullptr));
  const CFMutableDictionaryRef copy = CFDictionaryCreateMutableCopy(nullptr, 0, list);
  CFDataRef written = nullptr;
  if (copy) {
    const CFIndex count = CFDictionaryGetCount(copy);
    CFDictionarySetValue(copy, CFSTR("new"), CFSTR("value"));
    const bool isSet = CFDictionaryContainsKey(copy, CFSTR("new"));
    EXPECT_EQ(CFDictionaryGetCount(copy), isSet ? count + 1 : count);
    written = isSet ? CFPropertyListCreateXMLData(nullptr, copy) : nullptr;
  }
  CFRelease(copy);
  CFRelease(list);
  CFRelease(written);
  return written != nullptr;
}

TEST(CFPropertyList, GivesNullWhenAnyAllocationFails) {
  using namespace std::string_literals;
  const CFDataRef xml = Data("<plist version=\"1.0\">"s + kEveryKind + "</plist>");
  const CFDataRef bad = Data("<plist><dict><key>k</key></dict></plist>");
  ASSERT_TRUE(Rewrite(xml));  // makes the constant strings, too
  bool hasFailed = true;
  int failing = 0;
  for (; hasFailed; ++failing) {
    const FailingAllocation failure(failing);
    const bool isDone = Rewrite(xml);
    hasFailed = failure.HasFailed();
    EXPECT_TRUE(isDone || hasFailed);  // memory that is only given back, by a realloc to less, may fail without harm
  }
  EXPECT_GT(failing, 50);
  hasFailed = true;
  for (failing = 0; hasFailed; ++failing) {
    const FailingAllocation failure(failing);
    CFStringRef error = nullptr;
    EXPECT_EQ(CFPropertyListCreateFromXMLData(nullptr, bad, kCFPropertyListImmutable, &error), nullptr);
    hasFailed = failure.HasFailed();
    EXPECT_TRUE(error || hasFailed);
    CFRelease(error);
  }
  CFRelease(bad);
  CFRelease(xml);
}

}  // namespace
