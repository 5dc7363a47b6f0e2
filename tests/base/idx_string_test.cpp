#include "base/idx_string.h"

#include <gtest/gtest.h>
#include <strings.h>

#include <limits>
#include <random>
#include <string>
#include <type_traits>

#include "base/owners.h"
#include "base/string_conversion.h"
#include "base/text_hash.h"

namespace catalogcore {

namespace {

static_assert(!std::is_copy_constructible_v<CIDXBuffer> && !std::is_copy_assignable_v<CIDXBuffer>);

constexpr int kMaxInt = std::numeric_limits<int>::max();

TEST(IdxString, SearchesReturnPositionsMissesAndInvalidStarts) {
  CIDXString text, none, empty;
  text.CopyString("abcab");
  empty.CopyString("");
  const struct {
    CIDXString& string;
    char c;
    int start, forward, backward, replaced, replacedReverse;
  } cases[] = {
      {text, 'x', -1, 5, -1, -1, -1},  {text, 'a', -1, 0, 3, 0, 3},   {text, 'b', 2, 4, 1, 4, 1},
      {text, 'c', 2, 2, 2, 2, 2},      {text, 'a', 5, 5, 5, -1, -1},  {text, 'a', -7, -7, -7, -1, -1},
      {empty, 'a', -1, 0, -1, -1, -1}, {empty, 'a', 0, 0, 0, -1, -1}, {none, 'a', 4, 0, 0, -1, -1},
  };
  for (const auto& [string, c, start, forward, backward, replaced, replacedReverse] : cases) {
    SCOPED_TRACE(string.Text() + std::string{c} + std::to_string(start));
    EXPECT_EQ(string.Search(c, start), forward);
    EXPECT_EQ(string.SearchReverse(c, start), backward);
    EXPECT_EQ(string.Replace(c, c, start), replaced);
    EXPECT_EQ(string.ReplaceReverse(c, c, start), replacedReverse);
  }
  EXPECT_TRUE(none == empty && none != text);
}

TEST(IdxString, CopiesAndCuts) {
  CIDXString text;
  text[7] = 'x';  // must not change any string
  EXPECT_EQ(text[7], 0);
  EXPECT_EQ(text.CopyString("abcdef", 5), 5);
  for (const int count : {-2, kMaxInt}) EXPECT_EQ(text.CopyString("x", count), -1);
  EXPECT_EQ(text.CopyString(nullptr) + text.CopyString(nullptr, 2) + CIDXString().CatString(nullptr), 0);
  for (const auto& [first, last] : {std::pair{1, 5}, {-1, 2}, {5, 5}, {1, -1}, {3, 2}})
    EXPECT_EQ(text.TrimMid(first, last), 0);
  EXPECT_EQ(text.TrimMid(1, 2), 3);
  EXPECT_STREQ(text.Text(), "ade");
  EXPECT_EQ(text.CatString("//"), 5);
  EXPECT_EQ(text.TrimRight('/'), 4);
  for (const int i : {4, 5, -1, kMaxInt}) EXPECT_EQ(&text[i], text.Text() + 4) << i;
  // After a copy of more bytes than the text has, the zeros count as characters until the text is measured again.
  EXPECT_EQ(text.CopyString("ab", 5), 5);
  EXPECT_EQ(text.Count(0), 3);
  EXPECT_EQ(text.CatString("c"), 2);
  EXPECT_EQ(std::string(text.Text(), 6), std::string("ab\0\0\0c", 6));
}

TEST(IdxString, HashesAndEqualityMatchThoseComputedByteByByte) {
  std::mt19937_64 random(1);
  HashKey key;
  for (std::uint64_t& word : key.words) word = random();
  for (std::uint64_t& word : key.end) word = random();
  const auto folded = [&key](const std::string& text) { return FoldedHash(text.c_str(), text.size(), key); };
  const char near[] = "@AZ[`az{\x7F\x80\xC1\xDA\xE1\xFA\xFF/";
  for (int size = 0; size < 70; ++size) {
    for (int round = 0; round < 50; ++round) {
      std::string a;
      for (int i = 0; i < size; ++i) a += near[random() % 16];
      std::string b = a;
      if (size > 0) b[random() % a.size()] ^= static_cast<char>(round % 2 ? 0x20 : 0x80);
      std::uint32_t hash = 0;
      for (const char c : a) hash = hash * 137 + static_cast<std::uint32_t>(static_cast<signed char>(c));
      CIDXString left, right;
      left.CopyString(a.c_str());
      right.CopyString(b.c_str());
      EXPECT_EQ(left.GetHashKey(), hash % 1987) << a;
      const bool isSame = strcasecmp(a.c_str(), b.c_str()) == 0;  // in the C locale
      EXPECT_EQ(left == right, isSame) << a << " " << b;
      EXPECT_EQ(folded(a) == folded(b), isSame) << a << " " << b;
      EXPECT_NE(folded(a), folded(a + "/")) << a;
    }
  }
}

TEST(IdxBuffer, AppendsOverwriteTheLastTerminator) {
  CIDXBuffer buffer(1024);
  EXPECT_EQ(buffer.CatBuffer("Version\n", -1), 8);
  EXPECT_EQ(buffer.CatBuffer("end", 4), 11);
  for (const int count : {-2, kMaxInt}) EXPECT_EQ(buffer.CatBuffer("x", count), -1);
  EXPECT_STREQ(buffer.Text(), "Version\nend");
  // TrimMid leaves zeros, which end an append without a terminator. The last byte appended counts as the terminator.
  buffer.CopyBuffer("abcdefgh", -1);
  buffer.TrimMid(1, 6);
  EXPECT_EQ(buffer.CatBuffer("xyz", 2), 3);
  EXPECT_STREQ(buffer.Text(), "ahxy");
  EXPECT_EQ(buffer.CatBuffer("abc", -1), 6);
  EXPECT_STREQ(buffer.Text(), "ahxabc");
}

TEST(StringConversion, StoresANewStringOrLeavesTheVariableUnchanged) {
  const CFReference<CFStringRef> before(CFStringCreateWithCString(nullptr, "before", kCFStringEncodingUTF8));
  CFStringRef variable = before.get();
  CIDXString source;
  source.CopyString("not UTF-8: \xFF");
  EXPECT_EQ(CopyCIDXStringtoIDXSTR(&variable, source), IDX_OK);
  EXPECT_EQ(variable, before.get());
  source.CopyString("after");
  EXPECT_EQ(CopyCIDXStringtoIDXSTR(&variable, source), IDX_OK);
  const CFReference<CFStringRef> owner(variable);
  EXPECT_EQ(CFStringGetLength(variable), 5);
}

}  // namespace

}  // namespace catalogcore
