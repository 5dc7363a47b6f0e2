// The text of a catalogue file: the version tag on a line of its own, then one record a line, "first,attribute,last".
// Nothing is quoted: only the last field may hold a comma, and none a line feed.
#ifndef CATALOGCORE_PERSIST_PAYLOAD_H_
#define CATALOGCORE_PERSIST_PAYLOAD_H_

#include <cstdint>

#include "base/idx_buffer.h"

// 1 if the text is the version tag and nothing else, else 0; also for null.
int IsValidVersion(const char* text);

// Sets the payload to the line of the version tag, or appends that of a record. False without memory.
bool SetVersion(CIDXBuffer& payload);
bool AppendRecord(CIDXBuffer& payload, const char* first, std::uint8_t attribute, const char* last);

struct PayloadRecord {
  const char* first;
  std::uint8_t attribute;
  const char* last;
};

// Cuts a payload up in place, as strtok does: no field is empty, a run of separators counts as one, and an empty last
// field takes the whole following line in its place.
class PayloadReader {
 public:
  explicit PayloadReader(char* payload) : rest_(payload) {}

  // The first line; null if there is none. To be called first, and once.
  const char* VersionLine();

  // The next record; false when there is no whole one left.
  bool NextRecord(PayloadRecord& record);

 private:
  char* rest_;
};

#endif  // CATALOGCORE_PERSIST_PAYLOAD_H_
