#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <string_view>
#include <utility>

#include "base/owners.h"

namespace catalogcore {

namespace {

using namespace std::string_literals;
using Held = CFReference<CFTypeRef>;

Held Read(std::string_view xml) {
  const Held data(CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(xml.data()), static_cast<CFIndex>(xml.size())));
  return Held(CFPropertyListCreateFromXMLData(nullptr, static_cast<CFDataRef>(data.get()), 0, nullptr));
}

std::string BytesOf(CFTypeRef data) {
  const auto bytes = static_cast<CFDataRef>(data);
  return {reinterpret_cast<const char*>(CFDataGetBytePtr(bytes)), static_cast<std::size_t>(CFDataGetLength(bytes))};
}

// The XML of the list, or "" if it cannot be written.
std::string Write(CFTypeRef list) {
  const Held xml(CFPropertyListCreateXMLData(nullptr, list));
  return xml ? BytesOf(xml.get()) : "";
}

std::string Document(const std::string& value) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
         "<plist version=\"1.0\">\n" +
         value + "</plist>\n";
}
std::string Plist(const std::string& value) { return "<plist>" + value + "</plist>"; }
std::string InDict(const std::string& content) { return Plist("<dict>" + content + "</dict>"); }
std::string Repeat(const std::string& text, std::size_t count) {
  std::string repeated;
  for (std::size_t i = 0; i < count; ++i) repeated += text;
  return repeated;
}

// Characters up to U+00FF as UTF-16, with a byte-order mark.
std::string Utf16(const std::string& latin1, bool isBigEndian) {
  std::string text = isBigEndian ? "\xFE\xFF"s : "\xFF\xFE"s;
  for (const char c : latin1) text += isBigEndian ? std::string{'\0', c} : std::string{c, '\0'};
  return text;
}

// Every kind of value, nested, laid out as it is written.
constexpr const char* kEveryKind =
    "<dict>\n"
    "\t<key>z text</key>\n\t<string> \n\ttab, line feed, &#13; &amp;lt; ]]&gt; \xC3\xA9\xE4\xB8\xAD\xF0\x9F\x93\xB7 "
    "</string>\n"
    "\t<key>data</key>\n\t<data>\n"
    "\t//7//v/+//7//v/+//7//v/+//7//v/+//7//v/+//7//v/+//7//v/+//7//v/+//7/\n"
    "\t/iE=\n\t</data>\n"
    "\t<key>none</key>\n\t<data>\n\t</data>\n"
    "\t<key>integer</key>\n\t<integer>-9223372036854775809</integer>\n"
    "\t<key>real</key>\n\t<real>+1.50e-3</real>\n"
    "\t<key>date</key>\n\t<date>2004-02-29T23:59:60Z</date>\n"
    "\t<key>true</key>\n\t<true/>\n"
    "\t<key>a &lt;&amp;&gt;</key>\n\t<array>\n"
    "\t\t<false/>\n\t\t<array>\n\t\t\t<data>\n\t\t\tAA==\n\t\t\t</data>\n\t\t\t<dict/>\n\t\t</array>\n\t\t<array/>\n"
    "\t</array>\n"
    "\t<key></key>\n\t<dict>\n\t\t<key>inner</key>\n\t\t<string></string>\n\t</dict>\n"
    "</dict>\n";

TEST(CFPropertyList, EveryKindIsWrittenAsItWasRead) {
  const std::string document = Document(kEveryKind);
  for (std::size_t size = 0; size < document.find("</plist>") + 8; ++size) {
    EXPECT_EQ(Read(document.substr(0, size)), nullptr) << size << " bytes of it";
  }
  const Held list = Read(document + '\0');
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(Write(list.get()), document);
  EXPECT_EQ(BytesOf(CFDictionaryGetValue(static_cast<CFDictionaryRef>(list.get()), CFSTR("data"))),
            Repeat("\xFF\xFE", 26) + "!");
}

TEST(CFPropertyList, AcceptsAnyConformingLayout) {
  const std::string utf16 = "<plist><string>\xE9</string></plist>";
  const std::pair<std::string, std::string> cases[] = {
      {"\xEF\xBB\xBF" + Plist("<true></true>"), "<true/>"},
      {"<!DOCTYPE plist [<!ELEMENT plist ANY><!ATTLIST plist version CDATA '1.0'>]>" + Plist("<array />"), "<array/>"},
      {"<?go?><!--<plist>--><plist\n>\t<!-- - -->\r\n<?stop?><dict><!----><key>k</key> <!-- --> <true/></dict></plist>",
       "<dict>\n\t<key>k</key>\n\t<true/>\n</dict>"},
      {Plist("<string> a<![CDATA[<b>&amp;]]>&#x63;&#100;&quot;&apos;<!-- - -->]] <?p?>\r\n\r&#13;</string>"),
       "<string> a&lt;b&gt;&amp;amp;cd\"']] \n\n&#13;</string>"},
      {Plist("<data>\n\tQ\tU <![CDATA[I=]]>&#10;</data>"), "<data>\nQUI=\n</data>"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><plist><string>\xE9</string></plist>", "<string>\xC3\xA9</string>"},
      {Utf16(utf16, true), "<string>\xC3\xA9</string>"},
      {Utf16(utf16, false), "<string>\xC3\xA9</string>"},
      {Utf16("<plist><string>", true) + "\xD8\x3D\xDC\xF7"s + Utf16("</string></plist>", true).substr(2),
       "<string>\xF0\x9F\x93\xB7</string>"},
  };
  for (const auto& [xml, value] : cases) EXPECT_EQ(Write(Read(xml).get()), Document(value + "\n")) << xml;
}

TEST(CFPropertyList, RejectsWhatIsNotAPropertyList) {
  std::string attributes;
  for (int i = 0; i < 300; ++i) attributes += "a" + std::to_string(i) + " CDATA #IMPLIED ";
  const std::string bomb = "<!DOCTYPE plist [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;'>]>";
  // clang-format off
  const std::string cases[] = {
      Plist(""), Plist("<true/><true/>"), Plist("<dict/><dict/>"), Plist("<set/>"), Plist("<string><true/></string>"),
      Plist("<true>1</true>"), Plist("<array>&#160;</array>"), Plist(Plist("<true/>")), Plist("<true/>") + "\0\0"s,
      "<dict/>", "<plist size='1'><true/></plist>", Plist("<true version='1'/>"), Plist("<array><key>k</key></array>"),
      InDict("<key>k</key>"), InDict("<key>k</key><key>l</key><true/>"), InDict("<key>k</key><dict/><true/>"),
      InDict("<key>k</key><true/><key>l</key><true/><key>k</key><true/>"),
      InDict("<key>d</key><dict><key>k</key><true/><key>k</key><true/></dict>"),
      bomb + Plist("<string>&b;</string>"), bomb + Plist("<true/>"),
      "<!DOCTYPE plist [<!ENTITY % p SYSTEM 'file:///etc/passwd'>%p;]>" + Plist("<true/>"),
      "<!DOCTYPE plist [<!ATTLIST plist " + attributes + ">]>" + Plist("<true/>"),
      "<!DOCTYPE plist SYSTEM 'x'>" + Plist("<string>&b;</string>"), Plist("<string>\xED\xA0\x80</string>"),
      Utf16("<plist><string>", true) + "\xD8\x3D"s + Utf16("a</string></plist>", true).substr(2),
      Utf16("<plist><string>", false) + "\x3D\xDC"s + Utf16("a</string></plist>", false).substr(2)};
  // clang-format on
  for (const std::string& xml : cases) EXPECT_EQ(Read(xml), nullptr) << xml;
  for (const char* text : {"", "QQ==", "QUI=", "+/+/"}) EXPECT_NE(Read(Plist("<data>"s + text + "</data>")), nullptr);
  for (const char* text :
       {"Q", "QQ", "QQ=", "QQ===", "=", "====", "QQ==QQ==", "QR==", "QUJ=", "QU-_", "Q=Q=", "QUI=="}) {
    EXPECT_EQ(Read(Plist("<data>"s + text + "</data>")), nullptr) << text;
  }
}

// The XML parser does not get long runs of base64, but gets everything in and around them.
TEST(CFPropertyList, ReadsLongDataLikeShortData) {
  const std::string run = Repeat("QUJD\n\tQU JD", 8000);
  const std::string bytes = Repeat("ABCABC", 8000);
  const std::pair<std::string, std::string> cases[] = {
      {run + "&#81;UJD" + run + "<!-- <data>" + run + "-->Q<![CDATA[Q]]>=<?p?>=", bytes + "ABC" + bytes + "A"},
      {run + "\r\n" + run, bytes + bytes},
      {"<!-- <data>" + run + "-->QQ==", "A"},
      {run + "QQ", ""},  // "": invalid
      {run + "QQ==\n" + run, ""},
      {run + run + "*" + run, ""},
      {run + "<data>" + run + "</data>", ""},
      {"<![CDATA[<data>" + run + "]]>", ""},
  };
  for (const auto& [content, expected] : cases) {
    const Held list = Read(Plist("<data>" + content + "</data>"));
    EXPECT_TRUE(list ? BytesOf(list.get()) == expected : expected.empty()) << content.substr(content.size() - 40);
  }
  EXPECT_EQ(Write(Read(Plist("<string><![CDATA[<data>" + run + "]]></string>")).get()),
            Document("<string>&lt;data&gt;" + run + "</string>\n"));
}

// The reader passes pieces of 64 KiB to its XML parser. A tag may end anywhere near the end of a piece.
TEST(CFPropertyList, ReadsDataWhereverItsTagEnds) {
  const auto check = [](auto encode, std::size_t step) {
    for (std::size_t end = (1 << 16) - 30; end < (1 << 16) + 30; end += step) {
      std::string xml = "<plist><data>";
      xml.insert(7, (end - encode(xml).size()) / step, ' ');
      for (const std::size_t groups : {std::size_t{2}, std::size_t{20000}}) {
        const Held list = Read(encode(xml + Repeat("QUJD", groups) + "</data></plist>"));
        EXPECT_TRUE(list && BytesOf(list.get()) == Repeat("ABC", groups)) << groups << " groups at " << end;
      }
    }
  };
  check([](const std::string& ascii) { return ascii; }, 1);
  check([](const std::string& ascii) { return Utf16(ascii, false); }, 2);
}

TEST(CFPropertyList, NestsTo512Levels) {
  const auto nested = [](std::size_t levels) { return Repeat("<array>", levels) + Repeat("</array>", levels); };
  const std::string document = Write(Read(InDict("<key>k</key>" + nested(511))).get());
  ASSERT_NE(document, "");
  EXPECT_EQ(Write(Read(document).get()), document);
  EXPECT_EQ(Read(InDict("<key>k</key>" + nested(512))), nullptr);
  EXPECT_EQ(Read(Plist(nested(513))), nullptr);
}

// Work that grows with the square of a token's length or of the number of keys takes dozens of times as long.
TEST(CFPropertyList, ReadsLargeContentsAndManyKeysInProportion) {
  constexpr std::size_t kSize = std::size_t{24} << 20;
  const auto timeOf = [](const std::string& xml) {
    const std::clock_t begin = std::clock();
    EXPECT_NE(Read(xml), nullptr);
    return std::clock() - begin;
  };
  const std::string filler(kSize, 'A');
  const std::clock_t text = timeOf(Plist("<string>" + filler + "</string>"));
  const std::string dataInComment = Repeat("<data>" + std::string(70000, 'A'), kSize / 70000);
  std::string keys;
  for (int i = 0; i < 400000; ++i) keys += "<key>" + std::to_string(i) + "</key><true/>";
  const std::pair<const char*, std::string> cases[] = {
      {"comment", "<!--" + filler + "-->" + Plist("<true/>")},
      {"comment with data tags", Plist("<!--" + dataInComment + "--><true/>")},
      {"comment in UTF-16", Utf16(Plist("<!--" + filler.substr(kSize / 2) + "--><true/>"), true)},
      {"end tag", Plist("<true></true" + std::string(kSize, ' ') + ">")},
      {"keys", InDict(keys)},
      {"keys below the root", InDict("<key>k</key><dict>" + keys + "</dict>")},
  };
  for (const auto& [what, xml] : cases) EXPECT_LT(timeOf(xml), 12 * text) << what;
  EXPECT_EQ(BytesOf(Read(Plist("<data>" + filler + "</data>")).get()).size(), kSize / 4 * 3);
}

TEST(CFDictionary, KeepsTheOrderOfKeysWhenItChanges) {
  const Held list = Read(InDict("<key>c</key><array/><key>a</key><false/><key>b</key><data/>"));
  const auto dictionary = const_cast<CFMutableDictionaryRef>(static_cast<CFDictionaryRef>(list.get()));
  CFDictionarySetValue(dictionary, CFSTR("a"), CFSTR("new"));
  CFDictionarySetValue(dictionary, CFSTR("0"), CFDictionaryGetValue(dictionary, CFSTR("c")));
  CFDictionarySetValue(dictionary, dictionary, CFSTR("the key is not a string"));
  CFDictionarySetValue(dictionary, CFSTR("the value is itself"), dictionary);
  EXPECT_EQ(Write(dictionary), Document("<dict>\n\t<key>c</key>\n\t<array/>\n\t<key>a</key>\n\t<string>new</string>\n"
                                        "\t<key>b</key>\n\t<data>\n\t</data>\n\t<key>0</key>\n\t<array/>\n</dict>\n"));
  for (const char* text : {"\x01", "a\x1F", "\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
    EXPECT_EQ(Write(Held(CFStringCreateWithCString(nullptr, text, kCFStringEncodingUTF8)).get()), "");
  }
}

}  // namespace

}  // namespace catalogcore
