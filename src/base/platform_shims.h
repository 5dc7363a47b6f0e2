// Parts of the base interface that no call of the library uses: the desktop folder, the clock, handing over heap
// blocks.
#ifndef CATALOGCORE_BASE_PLATFORM_SHIMS_H_
#define CATALOGCORE_BASE_PLATFORM_SHIMS_H_

#include <cstdint>
#include <string>

namespace catalogcore {

// The size in bytes of the buffer that GetTempFilePath writes to.
inline constexpr int kTempFilePathSize = 100;

// Writes the path of the user's desktop folder with a trailing "/", zero-terminated, into `out` (kTempFilePathSize
// bytes). Despite its name the folder is not for temporary files. Leaves `out` unchanged if the folder does not exist
// or the path with its "/" does not fit.
void GetTempFilePath(char* out);

// The two steps of GetTempFilePath. DesktopFolderOf returns the desktop folder that ~/.config/user-dirs.dirs (the XDG
// user directories) names for the account with this home folder, otherwise "Desktop" in the home folder; the folder may
// be missing. WriteDesktopFolder writes its path as described above.
std::string DesktopFolderOf(const std::string& home);
void WriteDesktopFolder(const std::string& folder, char* out);

// Returns the wall clock in seconds since the system's epoch, to the microsecond.
double GetTime();

// Sleeps for one second, whatever the argument.
void SleepFunction(std::int32_t ignored);

// Returns its argument, null included.
void* GlobalLockAPI(void* block);

// Frees a block from malloc; ignores null.
void GlobalFreeAPI(void* block);

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_PLATFORM_SHIMS_H_
