// Files that the program did not make. A name may lead to a pipe, which makes its reader wait, to a device, whose content
// has no end, or through a link to a file of somebody else's.
#ifndef CATALOGCORE_APP_REGULAR_FILE_H_
#define CATALOGCORE_APP_REGULAR_FILE_H_

#include <string>

#include "persist/file_descriptor.h"

namespace catalogcore::app {

// Opens a regular file with the flags of open(), O_NOFOLLOW among them if links are to be refused. `folder` is a
// descriptor that a relative name starts from, or AT_FDCWD. Never waits. A file that is made is for its owner alone. On
// failure the result is not open and errno says why: ENXIO for what is not a regular file.
FileDescriptor OpenRegularFile(int folder, const std::string& name, int flags);

// errno of OpenRegularFile in words: "a link", "not a regular file", "Permission denied".
std::string WhyNotOpened(int code);

// The file from its start to its end. Throws std::system_error.
std::string ReadWholeFile(const FileDescriptor& file);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_REGULAR_FILE_H_
