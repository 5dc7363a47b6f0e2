// The records of a catalogue file as they stand in it, read beside the library: loading drops images whose file is gone,
// and whoever writes afterwards has to know what was dropped.
#ifndef CATALOGCORE_APP_CATALOG_RECORDS_H_
#define CATALOGCORE_APP_CATALOG_RECORDS_H_

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace catalogcore::app {

struct ReleaseObject {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};

// An owned reference of the type, null or not.
template <typename Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, ReleaseObject>;

struct CatalogRecord {
  std::string_view key;  // of an index, such as 1/10
  std::uint8_t attribute = 0;
  std::string_view text;  // an index's name or an image's path
};

// Owns what the views of its records point to.
class CatalogRecords {
 public:
  // Reads the item of that key ("IDXIndex", "IDXImage"). A file or an item that is not there holds no records. Throws
  // std::runtime_error, with the reason alone, when the file is there and cannot be read.
  CatalogRecords(const std::filesystem::path& file, CFStringRef key);

  const std::vector<CatalogRecord>& Records() const { return records_; }

  // Whether the text ends in the middle of a record, where the library stops reading too.
  bool IsCut() const { return isCut_; }

 private:
  void Cut(std::string_view payload);

  Owned<CFPropertyListRef> list_;
  std::vector<CatalogRecord> records_;
  bool isCut_ = false;
};

// The number of the index that a key names, 1100000 for 1/10; 0 if it names none that has a number.
std::int32_t NumberOfKey(std::string_view key);

// The key of an index's number.
std::string KeyOfNumber(std::int32_t number);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_CATALOG_RECORDS_H_
