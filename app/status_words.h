// The library's statuses in words, for people.
#ifndef CATALOGCORE_APP_STATUS_WORDS_H_
#define CATALOGCORE_APP_STATUS_WORDS_H_

#include <string>

#include "catalogcore.h"

namespace catalogcore::app {

// Of a call on images, indexes or a picture: "ok", "no such image", ...
std::string StatusWords(IDXSTATUS status);

// Of a call that loads or writes a file.
std::string FileStatusWords(IDXSTATUS status);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_STATUS_WORDS_H_
