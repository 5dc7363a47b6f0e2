#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <string>

namespace catalogcore {

namespace {

CFStringRef Make(const char* text) {
  return CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8);
}

TEST(CFString, TakesWellFormedUTF8Alone) {
  const struct {
    const char* text;
    CFIndex units;  // -1: refused
  } cases[] = {
      {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", 4},
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", 4},
      {"\x80", -1},   // a tail alone
      {"\xC3(", -1},  // cut short, here and below
      {"\xF0\x9F\x93", -1},
      {"\xF0\x8F\xBF\xBF", -1},
      {"\xED\xA0\x80", -1},      // a surrogate
      {"\xF4\x90\x80\x80", -1},  // above U+10FFFF
  };
  for (const auto& [text, units] : cases) {
    const CFStringRef string = Make(text);
    ASSERT_EQ(string != nullptr, units >= 0) << text;
    if (!string) continue;
    EXPECT_EQ(CFStringGetLength(string), units) << text;
    CFRelease(string);
  }
  EXPECT_EQ(CFStringCreateWithCString(nullptr, nullptr, kCFStringEncodingUTF8), nullptr);
}

TEST(CFString, ConvertsRangesOfUTF16UnitsByWholeCharacters) {
  const CFStringRef string = Make("a\xC3\xA4\xF0\x9F\x93\xB7z");  // 1, 2, 4 and 1 bytes; 1, 1, 2 and 1 units
  const struct {
    CFRange range;
    CFIndex capacity, units;
    const char* bytes;
  } cases[] = {
      {{0, 5}, 6, 2, "a\xC3\xA4"},
      {{1, 2}, 8, 1, "\xC3\xA4"},
      {{3, 2}, 8, 0, ""},
      {{-1, 1}, 8, 0, ""},
  };
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

TEST(CFURL, TellsWhyAFileIsNotRead) {
  for (const auto& [path, expected] : {std::pair{"/dev/null/below", kCFURLResourceNotFoundError},
                                       {"/tmp", kCFURLResourceAccessViolationError},
                                       {"/dev/zero", kCFURLResourceAccessViolationError}}) {
    const auto size = static_cast<CFIndex>(std::string(path).size());
    const CFURLRef url =
        CFURLCreateFromFileSystemRepresentation(nullptr, reinterpret_cast<const UInt8*>(path), size, false);
    CFDataRef data = nullptr;
    SInt32 error = 1;
    EXPECT_FALSE(CFURLCreateDataAndPropertiesFromResource(nullptr, url, &data, nullptr, nullptr, &error));
    EXPECT_EQ(error, expected) << path;
    CFRelease(url);
  }
}

TEST(CFBundle, IsAFolderBesideTheLibraryAndNeverFreed) {
  for (const char* identifier : {"org.catalogcore.missing", "", ".", "..", "../share/org.catalogcore.library"}) {
    const CFStringRef name = Make(identifier);
    EXPECT_EQ(CFBundleGetBundleWithIdentifier(name), nullptr) << identifier;
    CFRelease(name);
  }
  const CFBundleRef bundle = CFBundleGetBundleWithIdentifier(CFSTR("org.catalogcore.library"));
  ASSERT_NE(bundle, nullptr);
  for (int i = 0; i < 3; ++i) CFRelease(bundle);
  EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("org.catalogcore.library")), bundle);
  const CFURLRef url = CFBundleCopyResourceURL(bundle, CFSTR("brennparam"), CFSTR("dat"), nullptr);
  ASSERT_NE(url, nullptr);
  CFRelease(url);
  EXPECT_EQ(CFBundleCopyResourceURL(bundle, CFSTR("brennparam"), nullptr, nullptr), nullptr);
}

}  // namespace

}  // namespace catalogcore
