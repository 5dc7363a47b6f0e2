// A file that is there whole or not at all.
#ifndef CATALOGCORE_APP_GALLERY_WHOLE_FILE_H_
#define CATALOGCORE_APP_GALLERY_WHOLE_FILE_H_

#include <filesystem>
#include <string_view>

namespace catalogcore::app {

// Writes the content beside the file and renames it over it. Nothing is flushed to the disk: a gallery can be made again.
// Throws std::runtime_error, which names the file.
void WriteWholeFile(const std::filesystem::path& file, std::string_view content);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_GALLERY_WHOLE_FILE_H_
