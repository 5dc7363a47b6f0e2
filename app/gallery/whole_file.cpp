#include "app/gallery/whole_file.h"

#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace catalogcore::app {

void WriteWholeFile(const std::filesystem::path& file, std::string_view content) {
  const std::filesystem::path beside = file.string() + ".new";
  std::ofstream stream(beside, std::ios::binary | std::ios::trunc);
  stream.write(content.data(), static_cast<std::streamsize>(content.size()));
  stream.close();
  std::error_code error;
  if (stream.fail()) {
    error.assign(errno, std::generic_category());
  } else {
    std::filesystem::rename(beside, file, error);
  }
  if (!error) return;
  std::error_code ignored;
  std::filesystem::remove(beside, ignored);
  throw std::runtime_error("cannot write " + file.string() + ": " + error.message());
}

}  // namespace catalogcore::app
