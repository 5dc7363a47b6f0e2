#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <string_view>
#include <utility>

#include "base/owners.h"
#include "tests/platform/property_list_samples.h"

namespace catalogcore {

namespace {

using namespace std::string_literals;
using Held = CFReference<CFTypeRef>;

Held Read(std::string_view xml, std::string* error = nullptr, CFOptionFlags mutability = kCFPropertyListImmutable) {
  const Held data(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(xml.data()), static_cast<CFIndex>(xml.size())));
  CFStringRef reason = nullptr;
  Held list(CFPropertyListCreateFromXMLData(nullptr, static_cast<CFDataRef>(data.get()), mutability, &reason));
  EXPECT_EQ(list == nullptr, reason != nullptr);
  char text[200] = "";
  if (reason) CFStringGetCString(reason, text, sizeof text, kCFStringEncodingUTF8);
  if (error) *error = text;
  CFRelease(reason);
  return list;
}

std::string BytesOf(CFTypeRef data) {
  const auto bytes = static_cast<CFDataRef>(data);
  return {reinterpret_cast<const char*>(CFDataGetBytePtr(bytes)), static_cast<std::size_t>(CFDataGetLength(bytes))};
}

// The XML of the list, or "" when it is none.
std::string Write(CFTypeRef list) {
  const Held xml(CFPropertyListCreateXMLData(nullptr, list));
  return xml ? BytesOf(xml.get()) : "";
}

const std::string kHeader =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";

std::string Document(const std::string& value) { return kHeader + "<plist version=\"1.0\">\n" + value + "</plist>\n"; }
std::string Plist(const std::string& value) { return "<plist>" + value + "</plist>"; }
std::string InDict(const std::string& content) { return Plist("<dict>" + content + "</dict>"); }
std::string Repeat(const std::string& text, std::size_t count) {
  std::string repeated;
  for (std::size_t i = 0; i < count; ++i) repeated += text;
  return repeated;
}
std::string Arrays(std::size_t levels) { return Plist(Repeat("<array>", levels) + Repeat("</array>", levels)); }

// Characters up to U+00FF as UTF-16, with a byte-order mark.
std::string Utf16(const std::string& latin1, bool isBigEndian) {
  std::string text = isBigEndian ? "\xFE\xFF"s : "\xFF\xFE"s;
  for (const char c : latin1) text += isBigEndian ? std::string{'\0', c} : std::string{c, '\0'};
  return text;
}

TEST(CFPropertyList, EveryKindComesThroughAReadAndAWriteUnchanged) {
  const std::string document = Document(kEveryKind);
  const Held list = Read(document);
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(Write(list.get()), document);

  EXPECT_EQ(BytesOf(CFDictionaryGetValue(static_cast<CFDictionaryRef>(list.get()), CFSTR("data"))),
            Repeat("\xFF\xFE", 26) + "!");
}

TEST(CFPropertyList, TakesAnyConformingLayout) {
  const std::string latin1 = "<?xml version='1.0' encoding='ISO-8859-1'?><plist><string>\xE9</string></plist>";
  const std::string utf16 = "<plist><string>\xE9</string></plist>";
  const struct {
    std::string xml, value;
  } cases[] = {
      {"\xEF\xBB\xBF" + Plist("<true></true>"), "<true/>"},
      {Plist("<false/>") + "\r\n <!-- end -->\n", "<false/>"},
      {"<?xml version=\"1.0\"?><!DOCTYPE plist SYSTEM 'file://nowhere'><plist version='0.9'><dict/></plist>",
       "<dict/>"},
      {"<!DOCTYPE plist [<!ELEMENT plist ANY><!ATTLIST plist version CDATA '1.0'>]>" + Plist("<array />"), "<array/>"},
      {"<?go?><!--<plist>--><plist\n>\t<!-- - -->\r\n<?stop?><dict><!----><key>k</key> <!-- --> <true/></dict></plist>",
       "<dict>\n\t<key>k</key>\n\t<true/>\n</dict>"},
      {Plist("<string> a<![CDATA[<b>&amp;]]>&#x63;&#100;&quot;&apos;<!-- - -->]] <?p?>\r\n\r&#13;</string>"),
       "<string> a&lt;b&gt;&amp;amp;cd\"']] \n\n&#13;</string>"},
      {Plist("<data>\n\tQ\tU <![CDATA[I=]]>&#10;</data>"), "<data>\nQUI=\n</data>"},
      {latin1, "<string>\xC3\xA9</string>"},
      {Utf16(utf16, true), "<string>\xC3\xA9</string>"},
      {Utf16(utf16, false), "<string>\xC3\xA9</string>"},
      {Utf16("<plist><string>", true) + "\xD8\x3D\xDC\xF7"s + Utf16("</string></plist>", true).substr(2),
       "<string>\xF0\x9F\x93\xB7</string>"},
  };
  for (const auto& [xml, value] : cases) {
    std::string error;
    EXPECT_EQ(Write(Read(xml, &error).get()), Document(value + "\n")) << xml << error;
  }
}

TEST(CFPropertyList, RefusesWhatIsNoPropertyList) {
  const std::string whole = Document(kEveryKind);
  for (std::size_t size = 0; size < whole.find("</plist>") + 8; ++size) {
    EXPECT_EQ(Read(whole.substr(0, size)), nullptr) << size << " bytes of it";
  }
  std::string attributes;
  for (int i = 0; i < 300; ++i) attributes += "a" + std::to_string(i) + " CDATA #IMPLIED ";
  const std::string bomb = "<!DOCTYPE plist [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;'>]>";
  const struct {
    std::string xml, reason;
  } cases[] = {
      {Plist("<true/>") + "\0\0"s, "not well-formed"},
      {"<?xml version='1.0' encoding='EBCDIC'?>" + Plist("<true/>"), "unknown encoding"},
      {"<dict/>", "the outermost element is not plist"},
      {Plist(""), "no value in plist"},
      {Plist("<true/><true/>"), "more than one value"},
      {Plist("<set/>"), "unknown element"},
      {Plist("<string><true/></string>"), "an element within text"},
      {Plist("<true>1</true>"), "text where none may be"},
      {Plist("<array>&#160;</array>"), "text where none may be"},
      {"<plist size='1'><true/></plist>", "unknown attribute"},
      {Plist("<array><key>k</key></array>"), "a key outside a dictionary"},
      {InDict("<key>k</key><key>l</key><true/>"), "a key without a value"},
      {InDict("<key>k</key><dict/><true/>"), "a value without a key"},
      {InDict("<key>k</key><true/>\n<key>l</key><true/>\n<key>k</key><true/>"),
       "line 3: a key that its dictionary has"},
      {bomb + Plist("<string>&b;</string>"), "an entity declaration"},
      {"<!DOCTYPE plist [<!ENTITY % p SYSTEM 'file:///etc/passwd'>%p;]>" + Plist("<true/>"), "an entity declaration"},
      {"<!DOCTYPE plist [<!ATTLIST plist " + attributes + ">]>" + Plist("<true/>"), "too many attribute declarations"},
      {"<!DOCTYPE plist SYSTEM 'x'>" + Plist("<string>&b;</string>"), "an undefined entity"},
      {Plist("<string>\xED\xA0\x80</string>"), "not well-formed"},
      {Plist("<string>&#xD800;</string>"), "invalid character number"},
      {Utf16("<plist><string>", true) + "\xD8\x3D"s + Utf16("a</string></plist>", true).substr(2), "surrogate"},
      {Utf16("<plist><string>", false) + "\x3D\xDC"s + Utf16("a</string></plist>", false).substr(2), "surrogate"},
      {Arrays(513), "too many levels"},
  };
  for (const auto& [xml, reason] : cases) {
    std::string error;
    EXPECT_EQ(Read(xml, &error), nullptr) << xml;
    EXPECT_NE(error.find(reason), std::string::npos) << xml << ": " << error;
  }
}

TEST(CFPropertyList, RefusesValuesThatAreWrittenWrong) {
  const struct {
    const char* element;
    std::initializer_list<const char*> good, bad;
  } cases[] = {
      {"integer",
       {"0", "-12", "+3", "340282366920938463463374607431768211456"},
       {"", " ", "-", "1 2", "0x1F", "1.0", "--1"}},
      {"real",
       {"0", "-1.", "+2.50", "1e9", "3.25E-07", "nan", "-Infinity", "inf"},
       {"", ".5", "1,5", "1e", "1.5.", "e9", "0x1p3", "infinit", "1 e5"}},
      {"date",
       {"2004Z", "2004-02Z", "2004-02-29Z", "2004-02-29T23Z", "2004-02-29T23:59Z", "2016-12-31T23:59:60Z"},
       {"", "Z", "2004", "2003-02-29Z", "2004-13-01Z", "2004-01-01T24:00:00Z", "2004-01-01T10:00:00.5Z"}},
      {"data",
       {"", "QQ==", "QUI=", "QUJD", "+/+/"},
       {"Q", "QQ", "QQ=", "QQ===", "=", "====", "QQ==QQ==", "QR==", "QUJ=", "QU-_", "Q=Q=", "QUI=="}},
  };
  for (const auto& [element, good, bad] : cases) {
    const auto plist = [name = std::string(element)](const char* text) {
      return Plist(std::string("<").append(name).append(">").append(text).append("</").append(name).append(">"));
    };
    for (const char* text : good) EXPECT_NE(Read(plist(text)), nullptr) << element << ' ' << text;
    for (const char* text : bad) EXPECT_EQ(Read(plist(text)), nullptr) << element << ' ' << text;
  }
}

// Long runs of base64 are not left to the XML parser; what stands in and around them is.
TEST(CFPropertyList, ReadsLongDataAsItReadsShort) {
  const std::string run = Repeat("QUJD\n\tQU JD", 8000);
  const std::string bytes = Repeat("ABCABC", 8000);
  const struct {
    std::string content, bytes, reason;
  } cases[] = {
      {run + "QQ==\n", bytes + "A", ""},
      {run + "\r\n" + run, bytes + bytes, ""},
      {run + "&#81;UJD" + run + "<!-- <data>" + run + "-->Q<![CDATA[Q]]>=<?p?>=", bytes + "ABC" + bytes + "A", ""},
      {"<!-- <data>" + run + "-->QQ==", "A", ""},
      {run + "QQ", "", "line 8001: base64 that is cut short"},
      {run + "QQ==\n" + run, "", "line 8002: bad base64"},
      {run + run + "*" + run, "", "line 16001: bad base64"},
      {run + "<data>" + run + "</data>", "", "line 8001: an element within text"},
      {"<![CDATA[<data>" + run + "]]>", "", "line 1: bad base64"},
  };
  for (const auto& [content, expected, reason] : cases) {
    std::string error;
    const Held list = Read(Plist("<data>" + content + "</data>"), &error);
    EXPECT_EQ(error, reason);
    EXPECT_TRUE(!list || BytesOf(list.get()) == expected) << content.substr(content.size() - 40);
  }
  const std::string text = "<data>" + run;
  EXPECT_EQ(Write(Read(Plist("<string><![CDATA[" + text + "]]></string>")).get()),
            Document("<string>&lt;data&gt;" + run + "</string>\n"));
}

// The reader feeds its XML parser 64 KiB at a time. The tag ends at every place around the end of a piece.
TEST(CFPropertyList, ReadsDataWhereverItsTagEnds) {
  const auto utf8 = [](const std::string& ascii) { return ascii; };
  const auto little = [](const std::string& ascii) { return Utf16(ascii, false); };
  const auto big = [](const std::string& ascii) { return Utf16(ascii, true); };
  const auto check = [](auto encoded, std::size_t step) {
    for (std::size_t end = (1 << 16) - 30; end < (1 << 16) + 30; end += step) {
      std::string xml = "<plist><data>";
      xml.insert(7, (end - encoded(xml).size()) / step, ' ');
      ASSERT_EQ(encoded(xml).size(), end);
      for (const std::size_t groups : {std::size_t{2}, std::size_t{20000}}) {
        const Held list = Read(encoded(xml + Repeat("QUJD", groups) + "</data></plist>"));
        EXPECT_TRUE(list && BytesOf(list.get()) == Repeat("ABC", groups)) << groups << " groups at " << end;
      }
    }
  };
  check(utf8, 1);
  check(little, 2);
  check(big, 2);
}

TEST(CFPropertyList, NestsTo512LevelsAndNeverRecurses) {
  const std::string document = Write(Read(Arrays(512)).get());
  ASSERT_NE(document, "");
  EXPECT_EQ(Write(Read(document).get()), document);
  EXPECT_EQ(Read(Plist(Repeat("<array>", 1 << 17))), nullptr);

  CFMutableDictionaryRef nested = nullptr;
  for (int level = 0; level < 1000000; ++level) {
    const CFMutableDictionaryRef outer =
        CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
    CFDictionarySetValue(outer, CFSTR("k"), nested);
    CFRelease(nested);
    nested = outer;
    if (level == 511 || level == 512) {
      EXPECT_EQ(Write(nested).empty(), level == 512);
    }
  }
  EXPECT_EQ(Write(nested), "");
  CFRelease(nested);
}

// Work that grows with the square of a token's length or of the number of keys takes dozens of times as long.
TEST(CFPropertyList, TakesLargeContentsAndManyKeysInProportion) {
  constexpr std::size_t kSize = std::size_t{24} << 20;
  constexpr int kMostTimes = 12;
  const auto timeOf = [](const std::string& xml) {
    const std::clock_t begin = std::clock();
    EXPECT_NE(Read(xml), nullptr);
    return std::clock() - begin;
  };
  const std::string filler(kSize, 'A');
  const std::clock_t text = timeOf(Plist("<string>" + filler + "</string>"));
  const std::string dataInComment = Repeat("<data>" + std::string(70000, 'A'), kSize / 70000);
  const std::pair<const char*, std::string> cases[] = {
      {"comment", Plist("<!--" + filler + "--><true/>")},
      {"comment ahead of the root", "<!--" + filler + "-->" + Plist("<true/>")},
      {"comment with data tags", Plist("<!--" + dataInComment + "--><true/>")},
      {"comment in UTF-16", Utf16(Plist("<!--" + filler.substr(kSize / 2) + "--><true/>"), true)},
      {"processing instruction", Plist("<?p " + filler + "?><true/>")},
      {"CDATA section", Plist("<string><![CDATA[" + filler + "]]></string>")},
      {"attribute value", "<plist version='" + filler + "'><true/></plist>"},
      {"end tag", Plist("<true></true" + std::string(kSize, ' ') + ">")},
      {"document type", "<!DOCTYPE plist SYSTEM '" + filler + "'>" + Plist("<true/>")},
  };
  for (const auto& [what, xml] : cases) {
    const std::clock_t taken = timeOf(xml);
    EXPECT_LT(taken, kMostTimes * text) << what;
  }
  EXPECT_EQ(BytesOf(Read(Plist("<data>" + filler + "</data>")).get()).size(), kSize / 4 * 3);
  std::string keys;
  for (int i = 0; i < 400000; ++i) keys += "<key>" + std::to_string(i) + "</key><true/>";
  EXPECT_EQ(CFDictionaryGetCount(static_cast<CFDictionaryRef>(Read(InDict(keys)).get())), 400000);
}

TEST(CFPropertyList, IsNotWrittenWithWhatXmlDoesNotHave) {
  for (const char* text : {"\x01", "a\x1F", "\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
    EXPECT_EQ(Write(Held(CFStringCreateWithCString(nullptr, text, kCFStringEncodingUTF8)).get()), "");
  }
  EXPECT_EQ(Write(nullptr), "");
}

TEST(CFDictionary, KeepsTheOrderOfKeysWhileItIsChanged) {
  const std::string xml = InDict("<key>c</key><true/><key>a</key><false/><key>b</key><data/>");
  const auto fixed = Read(xml);
  const auto changed = Read(xml, nullptr, kCFPropertyListMutableContainers);
  for (const CFTypeRef list : {fixed.get(), changed.get()}) {
    const auto dictionary = const_cast<CFMutableDictionaryRef>(static_cast<CFDictionaryRef>(list));
    CFDictionarySetValue(dictionary, CFSTR("a"), CFSTR("new"));
    CFDictionarySetValue(dictionary, CFSTR("0"), CFSTR("last"));
    CFDictionaryRemoveValue(dictionary, CFSTR("c"));
    CFDictionarySetValue(dictionary, dictionary, CFSTR("no string as key"));
  }
  EXPECT_EQ(Write(fixed.get()), Write(Read(xml).get()));
  const Held wanted =
      Read(InDict("<key>a</key><string>new</string><key>b</key><data/><key>0</key><string>last</string>"));
  EXPECT_EQ(Write(changed.get()), Write(wanted.get()));

  const CFDictionaryKeyCallBacks own = {0};
  EXPECT_EQ(CFDictionaryCreateMutable(nullptr, 0, &own, &kCFTypeDictionaryValueCallBacks), nullptr);
}

TEST(CFData, BecomesAStringIfItIsWhole) {
  const UInt8 bytes[] = {0xEF, 0xBB, 0xBF, 'a', 0xC3, 0xA4};
  const auto lengthOf = [&bytes](CFIndex size) -> CFIndex {
    const Held data(CFDataCreate(nullptr, bytes, size));
    const CFReference<CFStringRef> string(
        CFStringCreateFromExternalRepresentation(nullptr, static_cast<CFDataRef>(data.get()), kCFStringEncodingUTF8));
    return string ? CFStringGetLength(string.get()) : -1;
  };
  EXPECT_EQ(lengthOf(5), -1);
  EXPECT_EQ(lengthOf(6), 2);  // without the mark at its beginning
  EXPECT_EQ(CFDataCreate(nullptr, bytes, -1), nullptr);
}

}  // namespace

}  // namespace catalogcore
