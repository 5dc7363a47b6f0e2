// Every allocation of a read, a change and a write fails once, in this library and in expat. The result is null, never an
// exception, which the catalogue's calls would hide.
#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <string>

#include "base/owners.h"
#include "tests/support/failing_allocator.h"

namespace catalogcore {

namespace {

TEST(CFPropertyList, ReturnsNullWhenAnyAllocationFails) {
  const std::string text =
      "<plist><dict><key>a</key><string>b</string><key>c</key><data>QUJD</data><key>d</key><array><dict><key>e</"
      "key><true/>"
      "</dict></array></dict></plist>";
  const CFReference<CFDataRef> xml(
      CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(text.data()), static_cast<CFIndex>(text.size())));
  int failing = -1;  // the first round fails none and makes the constant strings
  for (bool hasFailed = true; failing < 1 || hasFailed; ++failing) {
    const FailingAllocation failure(failing);
    const CFReference<CFPropertyListRef> list(CFPropertyListCreateFromXMLData(nullptr, xml.get(), 0, nullptr));
    const auto dictionary = const_cast<CFMutableDictionaryRef>(static_cast<CFDictionaryRef>(list.get()));
    if (list) CFDictionarySetValue(dictionary, CFSTR("new"), CFSTR("value"));
    const bool isSet = list && CFDictionaryGetValue(dictionary, CFSTR("new"));
    const CFReference<CFDataRef> written(CFPropertyListCreateXMLData(nullptr, list.get()));
    hasFailed = failure.HasFailed();
    EXPECT_TRUE(hasFailed || (isSet && written));
  }
  EXPECT_GT(failing, 50);
}

}  // namespace

}  // namespace catalogcore
