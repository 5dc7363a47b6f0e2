// The text of a catalogue file: the version tag on a line of its own, then one record a line, "first,attribute,last".
// Nothing is quoted: only the last field may hold a comma, and none a line feed.
#ifndef CATALOGCORE_PERSIST_PAYLOAD_H_
#define CATALOGCORE_PERSIST_PAYLOAD_H_

#include <cstdint>
#include <string_view>

#include "base/idx_string.h"

namespace catalogcore {

// 1 if the text is exactly the version tag, else 0.
int IsValidVersion(std::string_view text);

// SetVersion sets the payload to the line of the version tag; AppendRecord appends the line of a record. False without
// memory, or when the length would exceed 32 bits; the last line may then be incomplete. The block grows faster than
// the text, so that the cost of a payload is in proportion to its size.
bool SetVersion(CIDXBuffer& payload);
bool AppendRecord(CIDXBuffer& payload, const char* first, std::uint8_t attribute, const char* last);

// The fields point into the payload.
struct PayloadRecord {
  std::string_view first;
  std::uint8_t attribute;
  std::string_view last;
};

// False without memory.
bool CopyField(CIDXString& target, std::string_view field);

// Splits a payload like strtok: the payload ends at its first zero byte, no field is empty, a run of separators counts
// as one, and in place of an empty last field stands the whole following line.
class PayloadReader {
 public:
  explicit PayloadReader(std::string_view payload) : rest_(payload.substr(0, payload.find('\0'))) {}

  // The first line, or empty text. REQUIRES: the first call, and called once.
  std::string_view VersionLine() { return Token('\n'); }

  // The next record. False at the end of the payload, and for an incomplete last record.
  bool NextRecord(PayloadRecord& record);

  // Whether the payload ended within a record. Valid once NextRecord has returned false.
  bool IsCut() const { return isCut_; }

 private:
  std::string_view Token(char separator);

  std::string_view rest_;
  bool isCut_ = false;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_PAYLOAD_H_
