// Every allocation of a read, a change and a write fails once, in this library and in expat: null is what comes of it, and
// no exception, which the catalogue's calls would hide.
#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <string>

#include "base/owners.h"
#include "tests/platform/property_list_samples.h"
#include "tests/support/failing_allocator.h"

namespace catalogcore {

namespace {

TEST(CFPropertyList, GivesNullWhenAnyAllocationFails) {
  const std::string good = std::string("<plist>") + kEveryKind + "</plist>";
  for (const std::string& text : {good, std::string("<plist><dict><key>k</key></dict></plist>")}) {
    const CFReference<CFDataRef> xml(
        CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(text.data()), static_cast<CFIndex>(text.size())));
    int failing = -1;  // first none, which makes the constant strings
    for (bool hasFailed = true; failing < 1 || hasFailed; ++failing) {
      const FailingAllocation failure(failing);
      CFStringRef reason = nullptr;
      const CFReference<CFPropertyListRef> list(
          CFPropertyListCreateFromXMLData(nullptr, xml.get(), kCFPropertyListMutableContainers, &reason));
      const CFReference<CFStringRef> error(reason);
      const CFReference<CFMutableDictionaryRef> copy(
          CFDictionaryCreateMutableCopy(nullptr, 0, static_cast<CFDictionaryRef>(list.get())));
      const CFIndex count = copy ? CFDictionaryGetCount(copy.get()) : 0;
      if (copy) CFDictionarySetValue(copy.get(), CFSTR("new"), CFSTR("value"));
      const bool isSet = copy && CFDictionaryContainsKey(copy.get(), CFSTR("new"));
      EXPECT_EQ(copy ? CFDictionaryGetCount(copy.get()) : 0, isSet ? count + 1 : count);
      const CFReference<CFDataRef> written(CFPropertyListCreateXMLData(nullptr, copy.get()));
      hasFailed = failure.HasFailed();
      EXPECT_TRUE(hasFailed || (text == good ? isSet && written : error != nullptr));
    }
    EXPECT_GT(failing, text == good ? 50 : 10);
  }
}

}  // namespace

}  // namespace catalogcore
