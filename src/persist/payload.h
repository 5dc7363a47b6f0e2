// The payload, which is the text of the indexes or of the images in a catalogue file. The first line is the version
// tag. Every other line is an index or an image: "first,attribute,last". Nothing is quoted, so only the last field may
// contain a comma, and no field a line feed.
#ifndef CATALOGCORE_PERSIST_PAYLOAD_H_
#define CATALOGCORE_PERSIST_PAYLOAD_H_

#include <cstdint>
#include <string_view>

#include "base/idx_string.h"

namespace catalogcore {

// 1 if the text is exactly the version tag, else 0.
int IsValidVersion(std::string_view text);

// SetVersion sets the payload to the line of the version tag. AppendRecord appends a line with these fields. Both
// return false if memory cannot be allocated or the length does not fit in 32 bits; the last line may then be
// incomplete. The block grows by half its size, so that the time for a payload is in proportion to its size.
bool SetVersion(CIDXBuffer& payload);
bool AppendRecord(CIDXBuffer& payload, const char* first, std::uint8_t attribute, const char* last);

// The three fields of a line. They point into the payload.
struct PayloadRecord {
  std::string_view first;
  std::uint8_t attribute;
  std::string_view last;
};

// Returns false if memory cannot be allocated.
bool CopyField(CIDXString& target, std::string_view field);

// Splits a payload as strtok does. The payload ends at its first zero byte. Several separators in a row count as one,
// so no field is empty. If nothing follows the second comma of a line, the whole next line becomes the last field. If a
// line has fewer than two commas, the fields before the last continue in the next line.
class PayloadReader {
 public:
  explicit PayloadReader(std::string_view payload) : rest_(payload.substr(0, payload.find('\0'))) {}

  // Returns the first line, or empty text if there is none. REQUIRES: the first call, made once.
  std::string_view VersionLine() { return Token('\n'); }

  // Reads the next line. Returns false at the end of the payload, and if the last line lacks a field.
  bool NextRecord(PayloadRecord& record);

  // Whether the last line lacks a field. REQUIRES: NextRecord has returned false.
  bool IsCut() const { return isCut_; }

 private:
  std::string_view Token(char separator);

  std::string_view rest_;
  bool isCut_ = false;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_PAYLOAD_H_
