// The user's desktop folder.
#ifndef CATALOGCORE_BASE_PLATFORM_SHIMS_H_
#define CATALOGCORE_BASE_PLATFORM_SHIMS_H_

#include <string>

namespace catalogcore {

// The bytes that GetTempFilePath's caller must give it room for.
inline constexpr int kTempFilePathSize = 100;

// Writes the path of the desktop folder with a trailing "/", zero-terminated, into `out` (kTempFilePathSize
// bytes). Despite its name it is no folder for temporary files. `out` stays as it is when there is no such
// folder, or when the path with its "/" does not fit.
void GetTempFilePath(char* out);

// The desktop folder of the account with this home folder: what ~/.config/user-dirs.dirs (the XDG user
// directories) says, else "Desktop" in the home folder. Whether it exists is not looked at.
std::string DesktopFolderOf(const std::string& home);

// What GetTempFilePath does with the folder once it is known.
void WriteDesktopFolder(const std::string& folder, char* out);

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_PLATFORM_SHIMS_H_
