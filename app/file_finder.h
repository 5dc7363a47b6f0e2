// The image files below what a person names.
#ifndef CATALOGCORE_APP_FILE_FINDER_H_
#define CATALOGCORE_APP_FILE_FINDER_H_

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace catalogcore::app {

// The full path under which a file is catalogued: links resolved as far as the path exists.
std::string CatalogPath(const std::filesystem::path& file);

struct FoundFiles {
  std::vector<std::string> files;  // full paths, sorted, each once
  bool isStopped = false;
};

// Names that are files count whatever they are called; folders are searched for files that are called like pictures.
// Hidden files and folders in them are passed over, and so are galleries with their thumbnails. Links are followed; what
// cannot be read, and a link that leads back to a folder above it, is reported and passed over. `stop` is asked now and
// then.
FoundFiles FindPictures(const std::vector<std::string>& names, const std::function<bool(std::size_t found)>& stop,
                        const std::function<void(const std::string& file, const std::string& reason)>& report);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_FILE_FINDER_H_
