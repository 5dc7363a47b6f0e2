#include "base/idx_string.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <type_traits>

#include "base/idx_buffer.h"
#include "tests/support/failing_allocator.h"

namespace {

static_assert(!std::is_copy_constructible_v<CIDXString> && !std::is_copy_assignable_v<CIDXString>);
static_assert(!std::is_copy_constructible_v<CIDXBuffer> && !std::is_copy_assignable_v<CIDXBuffer>);

constexpr int kMaxInt = std::numeric_limits<int>::max();

TEST(IdxString, SearchesReportMissesAndOddStartsEachInTheirOwnWay) {
  CIDXString text, none, empty;
  text.CopyString("abcab");
  empty.CopyString("");
  const struct {
    CIDXString& string;
    char c;
    int start, forward, backward;
  } cases[] = {
      {text, 'x', -1, 5, -1}, {text, 'a', -1, 0, 3}, {text, 'b', 2, 4, 1},    {text, 'c', 2, 2, 2},
      {text, 'a', 5, 5, 5},   {text, 'a', 9, 9, 9},  {text, 'a', -7, -7, -7}, {empty, 'a', -1, 0, -1},
      {empty, 'a', 0, 0, 0},  {none, 'a', -1, 0, 0}, {none, 'a', 4, 0, 0},
  };
  for (const auto& [string, c, start, forward, backward] : cases) {
    EXPECT_EQ(string.Search(c, start), forward) << string.Text() << c << start;
    EXPECT_EQ(string.SearchReverse(c, start), backward) << string.Text() << c << start;
  }
}

TEST(IdxString, ReplacesOneOccurrenceOrNone) {
  CIDXString text, none;
  text.CopyString("a/b/c");
  EXPECT_EQ(text.ReplaceReverse('/', ':', -1), 3);
  EXPECT_EQ(text.Replace('/', '+', -1), 1);
  EXPECT_STREQ(text.Text(), "a+b:c");
  for (const int start : {-1, -7, 5, 9}) {
    EXPECT_EQ(text.Replace('/', ':', start), -1);
    EXPECT_EQ(text.ReplaceReverse('/', ':', start), -1);
  }
  EXPECT_EQ(none.Replace(0, 'x', -1), -1);
  EXPECT_EQ(none.ReplaceReverse(0, 'x', -1), -1);
}

TEST(IdxString, CopiesByTerminatorOrByCount) {
  CIDXString text;
  EXPECT_EQ(text.CopyString("abcdef", 3), 3);
  EXPECT_STREQ(text.Text(), "abc");
  EXPECT_EQ(text.CopyString(nullptr), 0);
  EXPECT_EQ(text.CopyString(nullptr, 2), 0);
  EXPECT_EQ(text.CopyString("x", -2), -1);
  EXPECT_EQ(text.CopyString("x", kMaxInt), -1);
  EXPECT_STREQ(text.Text(), "abc");
  // A count beyond the text counts the zeros in between as characters.
  EXPECT_EQ(text.CopyString("ab", 5), 5);
  EXPECT_EQ(std::string(text.Text(), 6), std::string("ab\0\0\0\0", 6));
  EXPECT_EQ(text.Count(0), 3);
  EXPECT_EQ(text.Search(0, -1), 2);
  EXPECT_EQ(text.CatString("c"), 2);  // appended behind the zeros, measured up to the first
  EXPECT_EQ(text.Text()[5], 'c');
}

TEST(IdxString, GrowsToExactlyWhatIsNeeded) {
  CIDXString text;
  EXPECT_EQ(text.AllocBuffer(0), nullptr);
  EXPECT_EQ(text.AllocBuffer(-4), nullptr);
  EXPECT_EQ(text.CatString(""), 0);
  EXPECT_EQ(text.Capacity(), 1);
  EXPECT_EQ(text.CatString("abcd"), 4);
  EXPECT_EQ(text.Capacity(), 5);
  EXPECT_NE(text.AllocBuffer(5), nullptr);
  EXPECT_STREQ(text.AllocBuffer(2), "abcd");
  EXPECT_EQ(text.Capacity(), 5);
  text.CopyString("x");
  EXPECT_EQ(text.Capacity(), 5);
  text.ClearString();
  EXPECT_EQ(text.ConvertASCIIToUTF8(), nullptr);
  EXPECT_EQ(text.Length() + text.Capacity(), 0);
  CIDXString sized(16);
  EXPECT_EQ(sized.Capacity(), 16);
  EXPECT_STREQ(sized.Text(), "");
}

TEST(IdxString, TrimsAtTheEndAndInTheMiddle) {
  CIDXString text;
  text.CopyString("abcde");
  for (const auto& [first, last] : {std::pair{1, 5}, {-1, 2}, {5, 5}, {1, -1}, {3, 2}}) {
    EXPECT_EQ(text.TrimMid(first, last), 0);
    EXPECT_STREQ(text.Text(), "abcde");
  }
  EXPECT_EQ(text.TrimMid(1, 2), 3);
  EXPECT_STREQ(text.Text(), "ade");
  EXPECT_EQ(text.TrimMid(0, 2), 0);
  EXPECT_STREQ(text.Text(), "");
  text.CopyString("dir//");
  EXPECT_EQ(text.TrimRight('/'), 4);
  EXPECT_EQ(text.TrimRight('x'), 4);
  EXPECT_STREQ(text.Text(), "dir/");
  CIDXString none;
  EXPECT_EQ(none.TrimRight('/') + none.TrimMid(0, 0) + none.Count('/'), 0);
}

TEST(IdxString, IndexesOutsideTheTextReachItsEnd) {
  CIDXString text, none;
  text.CopyString("abc");
  for (const int i : {3, 4, -1, kMaxInt}) EXPECT_EQ(&text[i], text.Text() + 3) << i;
  none[7] = 'x';
  EXPECT_EQ(none[0], 0);
  EXPECT_EQ(none.ConvertASCIIToUTF8(), nullptr);
}

TEST(IdxString, HashTellsCasesApartAndEqualityDoesNot) {
  const struct {
    const char* text;
    std::uint32_t hash;
  } cases[] = {{"", 0}, {"a", 97}, {"abc", 117}, {"Photo", 563}, {"PHOTO", 1935}, {"\xFF", (0xFFFFFFFFu) % 1987}};
  for (const auto& [text, hash] : cases) {
    CIDXString string;
    string.CopyString(text);
    EXPECT_EQ(string.GetHashKey(), hash) << text;
  }
  CIDXString lower, upper, umlaut, otherUmlaut, none, empty;
  lower.CopyString("photo[z");
  upper.CopyString("PHOTO[Z");
  umlaut.CopyString("\xC3\xA4");
  otherUmlaut.CopyString("\xC3\x84");
  empty.CopyString("");
  EXPECT_TRUE(lower == upper);
  EXPECT_TRUE(umlaut != otherUmlaut);
  EXPECT_TRUE(none == empty);
  EXPECT_TRUE(none != lower);
  lower.CopyString("photo{z");  // "[" and "{" differ by the bit that tells the cases apart
  EXPECT_TRUE(lower != upper);
}

TEST(IdxBuffer, AppendsOverTheTerminatorOfTheLastAppend) {
  CIDXBuffer buffer(1024);
  EXPECT_EQ(buffer.CatBuffer("Version\n", -1), 8);
  EXPECT_EQ(buffer.CatBuffer("record\n", -1), 15);
  EXPECT_EQ(buffer.CatBuffer("end", 4), 18);
  EXPECT_STREQ(buffer.Text(), "Version\nrecord\nend");
  EXPECT_EQ(buffer.CatBuffer(nullptr, 3), -1);
  EXPECT_EQ(buffer.CatBuffer("x", -2), -1);
  EXPECT_EQ(buffer.CatBuffer("x", kMaxInt), -1);
  EXPECT_EQ(buffer.Length(), 18);
  EXPECT_EQ(buffer.CopyBuffer("xyz", 2), 2);
  EXPECT_STREQ(buffer.Text(), "xy");
  CIDXBuffer unterminated;
  EXPECT_EQ(unterminated.CatBuffer("xyz", 2), 1);  // the second byte is taken for the terminator
  EXPECT_EQ(unterminated.CatBuffer("abc", -1), 4);
  EXPECT_STREQ(unterminated.Text(), "xabc");
}

TEST(IdxString, FailedAllocationChangesNothing) {
  CIDXBuffer text;
  text.CopyString("abc");
  const auto fails = [&text](auto operation) {
    const FailingAllocation noMemory(0);
    EXPECT_EQ(operation(), -1);
    EXPECT_STREQ(text.Text(), "abc");
    EXPECT_EQ(text.Length(), 3);
  };
  fails([&] { return text.CopyString("abcdef"); });
  fails([&] { return text.CopyString("abcdef", 5); });
  fails([&] { return text.CatString("d"); });
  fails([&] { return text.CatBuffer("d", -1); });
}

}  // namespace
