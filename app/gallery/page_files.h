// The files of the page, which the build embeds into the program (cmake/embed_files.cmake).
#ifndef CATALOGCORE_APP_GALLERY_PAGE_FILES_H_
#define CATALOGCORE_APP_GALLERY_PAGE_FILES_H_

#include <span>
#include <string_view>

namespace catalogcore::app {

struct EmbeddedFile {
  std::string_view name;  // relative to the gallery's folder
  std::string_view content;
};

// In the order in which to write them: index.html last.
std::span<const EmbeddedFile> PageFiles();

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_GALLERY_PAGE_FILES_H_
