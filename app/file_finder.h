// The image files below what a person names.
#ifndef CATALOGCORE_APP_FILE_FINDER_H_
#define CATALOGCORE_APP_FILE_FINDER_H_

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace catalogcore::app {

// The full path under which a file is catalogued: links resolved as far as the path exists.
std::string CatalogPath(const std::filesystem::path& file);

struct FoundFiles {
  std::vector<std::string> files;             // full paths, sorted, each once
  std::map<std::string, std::string> links;   // by full path: the link that led to this file or folder
  std::map<std::string, std::size_t> others;  // files passed over because of their names, by extension: "PDF"
  bool isStopped = false;

  // The link that led to the file, if there was one; else empty.
  std::string LinkTo(const std::string& file) const;

  // For messages: "LINK -> FILE" if a link led to the file, "FILE -> TARGET" if the file is itself a link.
  std::string Shown(const std::string& file) const;
};

// Names that are files count whatever they are called; folders are searched for files that are called like pictures.
// Hidden files and folders in them are passed over, and so are galleries with their thumbnails. Links are followed; what
// cannot be read, and a link that leads back to a folder above it, is reported and passed over. `stop` is asked now and
// then.
FoundFiles FindPictures(const std::vector<std::string>& names, const std::function<bool(std::size_t found)>& stop,
                        const std::function<void(const std::string& file, const std::string& reason)>& report);

// "Passed over 6 files of other kinds: 3 PDF, 2 GIF, 1 without extension", the most frequent first; empty if there are
// none.
std::string OtherKinds(const std::map<std::string, std::size_t>& others);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_FILE_FINDER_H_
