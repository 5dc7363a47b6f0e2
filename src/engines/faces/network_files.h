// The files with the trained networks, which the build embeds into the library (cmake/embed_files.cmake).
#ifndef CATALOGCORE_ENGINES_FACES_NETWORK_FILES_H_
#define CATALOGCORE_ENGINES_FACES_NETWORK_FILES_H_

#include <span>
#include <string_view>

namespace catalogcore::faces {

struct EmbeddedFile {
  std::string_view name;
  std::string_view content;
};

// The search network, then the check network.
std::span<const EmbeddedFile> NetworkFiles();

}  // namespace catalogcore::faces

#endif  // CATALOGCORE_ENGINES_FACES_NETWORK_FILES_H_
