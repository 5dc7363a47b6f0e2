#include "base/file_path.h"

#include <cstring>

namespace catalogcore {

int ExtractFilePath(CIDXString& folder, const CIDXString& file) {
  const char* const path = file.Text();
  const char* const slash = std::strrchr(path, '/');
  if (!slash) return 0;
  return folder.CopyString(path, static_cast<int>(slash - path)) < 0 ? 0 : 1;
}

}  // namespace catalogcore
