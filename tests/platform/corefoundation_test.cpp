#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <string>

namespace catalogcore {

namespace {

CFStringRef Make(const char* text) {
  return CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8);
}

TEST(CFString, AcceptsOnlyWellFormedUTF8) {
  const CFStringRef string = Make("\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
  ASSERT_NE(string, nullptr);
  EXPECT_EQ(CFStringGetLength(string), 8);
  CFRelease(string);
  const char* const invalid[] = {
      "\x80", "\xC3(", "\xF0\x9F\x93", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", nullptr};
  for (const char* text : invalid) EXPECT_EQ(Make(text), nullptr) << text;
}

TEST(CFString, ConvertsRangesOfUTF16UnitsByWholeCharacters) {
  const CFStringRef string = Make("a\xC3\xA4\xF0\x9F\x93\xB7z");  // 1, 2, 4 and 1 bytes; 1, 1, 2 and 1 units
  const struct {
    CFRange range;
    CFIndex capacity, units;
    const char* bytes;
  } cases[] = {{{0, 5}, 6, 2, "a\xC3\xA4"}, {{1, 2}, 8, 1, "\xC3\xA4"}, {{3, 2}, 8, 0, ""}, {{-1, 1}, 8, 0, ""}};
  for (const auto& [range, capacity, units, bytes] : cases) {
    UInt8 buffer[8];
    CFIndex used = -1;
    EXPECT_EQ(CFStringGetBytes(string, range, kCFStringEncodingUTF8, 0, false, buffer, capacity, &used), units);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), static_cast<std::size_t>(used)), bytes);
  }
  char text[9] = "?";
  EXPECT_FALSE(CFStringGetCString(string, text, 8, kCFStringEncodingUTF8));
  EXPECT_STREQ(text, "?");
  EXPECT_TRUE(CFStringGetCString(string, text, 9, kCFStringEncodingUTF8));
  CFRelease(string);
}

TEST(CFURL, ReadsRegularFilesOnly) {
  for (const CFStringRef path : {CFSTR("/dev/null/below"), CFSTR("/tmp"), CFSTR("/dev/zero")}) {
    const CFURLRef url = CFURLCreateWithFileSystemPath(nullptr, path, kCFURLPOSIXPathStyle, false);
    CFDataRef data = nullptr;
    EXPECT_FALSE(CFURLCreateDataAndPropertiesFromResource(nullptr, url, &data, nullptr, nullptr, nullptr));
    CFRelease(url);
  }
}

TEST(CFBundle, IsAFolderOfTheInstallationAndNeverFreed) {
  for (const CFStringRef name : {CFSTR("org.catalogcore.missing"), CFSTR(""), CFSTR("."), CFSTR(".."),
                                 CFSTR("../share/org.catalogcore.library")}) {
    EXPECT_EQ(CFBundleGetBundleWithIdentifier(name), nullptr);
  }
  const CFBundleRef bundle = CFBundleGetBundleWithIdentifier(CFSTR("org.catalogcore.library"));
  ASSERT_NE(bundle, nullptr);
  for (int i = 0; i < 3; ++i) CFRelease(bundle);
  EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("org.catalogcore.library")), bundle);
  const CFURLRef url = CFBundleCopyResourceURL(bundle, CFSTR("brennparam"), CFSTR("dat"), nullptr);
  EXPECT_NE(url, nullptr);
  CFRelease(url);
  EXPECT_EQ(CFBundleCopyResourceURL(bundle, CFSTR("brennparam"), nullptr, nullptr), nullptr);
}

}  // namespace

}  // namespace catalogcore
