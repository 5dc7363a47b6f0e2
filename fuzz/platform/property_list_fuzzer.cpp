// Reads and writes property lists. What is written reads and writes to the same bytes, and ASCII in UTF-16 gives the same
// result as in ASCII. Bytes that XML does not have make an input long enough to reach the limits of the reader, which a
// fuzzer does not reach by itself:
//   1     base64 that is too long for the reader to pass it to its XML parser;
//   2 N   blanks, so many that N more characters complete a piece of the XML parser's input;
//   3, 4  at the beginning: UTF-16, little or big endian.
#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>

#include "base/owners.h"
#include "fuzz/support/fuzzer.h"

namespace catalogcore {

namespace {

enum class Encoding { kBytes, kLittleEndian, kBigEndian };

std::string Encoded(const std::string& latin1, Encoding encoding) {
  if (encoding == Encoding::kBytes) return latin1;
  const std::size_t low = encoding == Encoding::kLittleEndian ? 0 : 1;
  std::string text(2 * (latin1.size() + 1), '\0');
  text[low] = '\xFF';
  text[1 - low] = '\xFE';
  for (std::size_t i = 0; i < latin1.size(); ++i) text[2 * (i + 1) + low] = latin1[i];
  return text;
}

// Replaces the bytes 1 and 2 of the input, at most four of them.
std::string Expanded(std::string_view input, Encoding encoding) {
  constexpr std::size_t kPiece = std::size_t{64} << 10, kMostLong = 4;
  const std::size_t width = encoding == Encoding::kBytes ? 1 : 2;
  std::string text;
  std::size_t count = 0;
  for (std::size_t at = 0; at < input.size(); ++at) {
    if (input[at] == '\x01' && count < kMostLong) {
      text.append(std::size_t{70} << 10, 'Q');
      ++count;
    } else if (input[at] == '\x02' && at + 1 < input.size() && count < kMostLong) {
      const auto left = static_cast<unsigned char>(input[++at]) + width - 1;  // the mark of UTF-16 is one character
      text.append((2 * kPiece / width - text.size() % (kPiece / width) - left) % (kPiece / width), ' ');
      ++count;
    } else {
      text += input[at];
    }
  }
  return text;
}

// The XML as it is written after a read; "" if it is not a property list.
std::string Rewritten(std::string_view xml) {
  const CFReference<CFDataRef> data(
      CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(xml.data()), static_cast<CFIndex>(xml.size())));
  const CFReference<CFPropertyListRef> list(CFPropertyListCreateFromXMLData(nullptr, data.get(), 0, nullptr));
  const CFReference<CFDataRef> written(CFPropertyListCreateXMLData(nullptr, list.get()));
  EXPECT_EQ(list == nullptr, written == nullptr);
  if (!written) return "";
  return std::string(AsText(CFDataGetBytePtr(written.get()), static_cast<std::size_t>(CFDataGetLength(written.get()))));
}

// Without a declared encoding, ASCII is the same property list in UTF-16.
bool IsPlainAscii(std::string_view text) {
  return text.find("encoding") == text.npos && std::ranges::all_of(text, [](char c) { return c > 0; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const bool isUtf16 = size > 0 && (*data == 3 || *data == 4);
  const Encoding encoding = !isUtf16 ? Encoding::kBytes : *data == 3 ? Encoding::kLittleEndian : Encoding::kBigEndian;
  const std::string text = Expanded(AsText(data + isUtf16, size - isUtf16), encoding);
  const std::string xml = Encoded(text, encoding);
  const ProportionalMemory memory(xml.size());
  const std::string written = Rewritten(xml);
  EXPECT_TRUE(!isUtf16 || !IsPlainAscii(text) || written == Rewritten(text));
  EXPECT_EQ(written, Rewritten(written));
  return 0;
}

}  // namespace catalogcore
