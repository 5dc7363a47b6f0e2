// Finds the image files below the files and folders that a person names.
#ifndef CATALOGCORE_APP_FILE_FINDER_H_
#define CATALOGCORE_APP_FILE_FINDER_H_

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace catalogcore::app {

// The absolute path under which a file is catalogued. Links are resolved as far as the path exists.
std::string CatalogPath(const std::filesystem::path& file);

struct FoundFiles {
  std::vector<std::string> files;             // absolute paths, sorted, without duplicates
  std::map<std::string, std::string> links;   // by absolute path: the link that led to the file or folder
  std::map<std::string, std::size_t> others;  // number of files of other kinds, by extension: "PDF"
  bool isStopped = false;

  // The link that led to the file, or empty.
  std::string LinkTo(const std::string& file) const;

  // For messages: "LINK -> FILE" if a link led to the file, "FILE -> TARGET" if the file is itself a link.
  std::string Shown(const std::string& file) const;
};

// Returns every file among `names`, and the files with picture extensions in every folder among them and below. Skips
// hidden files, hidden folders and galleries in those folders. Follows links. Reports names that cannot be read and links
// that lead back to a folder above. Ends early when `stop` returns true.
FoundFiles FindPictures(const std::vector<std::string>& names, const std::function<bool(std::size_t found)>& stop,
                        const std::function<void(const std::string& file, const std::string& reason)>& report);

// "Passed over 6 files of other kinds: 3 PDF, 2 GIF, 1 without extension", the most frequent first. Empty without such files.
std::string OtherKinds(const std::map<std::string, std::size_t>& others);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_FILE_FINDER_H_
