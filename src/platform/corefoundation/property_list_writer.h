// Writes the elements of a property list as indented XML in UTF-8, one a line.
#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_PROPERTY_LIST_WRITER_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_PROPERTY_LIST_WRITER_H_

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/corefoundation/byte_buffer.h"

namespace catalogcore::cf {

// All functions may throw std::bad_alloc.
class PropertyListWriter {
 public:
  // The start and the end of an array or dictionary. REQUIRES: Close matches the last open element.
  void Open(std::string_view element);
  void Close(std::string_view element);

  // Indents what follows as the content of one more element.
  void AddLevel() { ++outerLevels_; }

  void WriteEmpty(std::string_view element);
  void WriteData(std::string_view bytes);

  // False if the content, which is UTF-8, has a character that XML does not have.
  [[nodiscard]] bool WriteText(std::string_view element, std::string_view content);

  // Text that is XML already.
  void Append(std::string_view xml) { text_.Append(xml); }

  // The text so far; the writer continues with an empty one.
  ByteBuffer TakeText() { return std::move(text_); }

 private:
  std::string_view Indent() const;
  void WriteTag(std::string_view opening, std::string_view element, std::string_view closing);
  void WriteClosing(std::string_view element);

  std::size_t outerLevels_ = 0;
  std::vector<std::size_t> contents_;  // of each open element: the position in `text_` where its content begins
  ByteBuffer text_;
};

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_PROPERTY_LIST_WRITER_H_
