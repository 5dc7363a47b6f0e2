#include "app/status_words.h"

namespace catalogcore::app {

std::string StatusWords(IDXSTATUS status) {
  switch (status) {
    case IDX_OK:
      return "ok";
    case IDXERR_PARAM:
      return "the catalogue cannot hold that";
    case IDXERR_NOIMAGE:
      return "not in the catalogue";
    case IDXERR_NOINDEX:
      return "no such index";
    case IDXERR_IMAGEEXISTS:
      return "already in the catalogue";
    case IDXERR_INDEXEXISTS:
      return "there is an index of that name already";
    case IDXERR_INDEXFULL:
      return "no number is left: an index takes 20 others, numbered 10 to 29";
    case IDXERR_MEMORY:
      return "out of memory";
    case IDXERR_NOTEMPTY:
      return "it still holds other indexes";
    case IDXERR_PROTECTED:
      return "protected";
    case IDXERR_DETECTOR:
      return "the recognizer's parameters (brennparam.dat) are not where the library looks for them";
    case IDXERR_IMAGESIZE:
      return "the picture is too large";
    default:
      break;
  }
  if (status >= IDXERR_FACES) return "the face detector fails with code " + std::to_string(status - IDXERR_FACES);
  if (status >= IDXERR_RECOGNIZER) {
    return "the recognizer fails with code " + std::to_string(status - IDXERR_RECOGNIZER);
  }
  return "the library fails with status " + std::to_string(status);
}

std::string FileStatusWords(IDXSTATUS status) {
  switch (status) {
    case IDX_OK:
      return "ok";
    case IDXERR_FAILED:
      return "it cannot be read or written, or is no catalogue file";
    case IDXERR_NODATA:
      return "nothing there yet";
    case IDXERR_EMPTY:
      return "its text is empty";
    case IDXERR_VERSION:
      return "it is of another version";
    default:
      return StatusWords(status);
  }
}

}  // namespace catalogcore::app
