#include "api/file_path.h"

int ExtractFilePath(CIDXString& folder, const CIDXString& file) {
  CIDXString path;
  path.CopyString(file.Text(), -1);
  if (!path.ConvertASCIIToUTF8()) return 0;
  const std::int32_t slash = path.SearchReverse('/', -1);
  if (slash < 0) return 0;
  return folder.CopyString(path.Text(), slash) < 0 ? 0 : 1;
}

int NormFilePathKey(CIDXString& key) {
  if (key.Length() >= 2 && key[0] == '/' && key[1] == '/') {
    key[0] = 's';
    key[1] = ':';
  }
  return 1;
}
