#include "base/platform_shims.h"

#include <pwd.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string_view>
#include <thread>
#include <vector>

#include "base/file_existence.h"
#include "base/owners.h"

namespace catalogcore {

namespace {

// Reads the account database, because the library does not read the environment. Returns an empty text for an unknown
// account.
std::string HomeFolder() {
  constexpr std::size_t kEnoughForAnEntry = 16384;
  std::vector<char> text(kEnoughForAnEntry);
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(geteuid(), &entry, text.data(), text.size(), &found) != 0 || !found) return {};
  return found->pw_dir ? found->pw_dir : "";
}

}  // namespace

std::string DesktopFolderOf(const std::string& home) {
  constexpr std::string_view kKey = "XDG_DESKTOP_DIR=\"";
  constexpr std::string_view kHome = "$HOME";
  std::ifstream settings(home + "/.config/user-dirs.dirs");
  for (std::string line; std::getline(settings, line);) {
    const std::size_t end = line.rfind('"');
    if (line.compare(0, kKey.size(), kKey) != 0 || end < kKey.size()) continue;
    std::string value = line.substr(kKey.size(), end - kKey.size());
    if (value == kHome || value.compare(0, kHome.size() + 1, std::string(kHome) + '/') == 0) {
      return home + value.substr(kHome.size());
    }
    if (value.compare(0, 1, "/") == 0) return value;
  }
  return home + "/Desktop";
}

void WriteDesktopFolder(const std::string& folder, char* out) {
  if (!IsFileExistAPI(folder.c_str())) return;
  const CFReference<CFURLRef> url(CFURLCreateFromFileSystemRepresentation(
      kCFAllocatorDefault, reinterpret_cast<const UInt8*>(folder.data()), static_cast<CFIndex>(folder.size()), true));
  if (!url) return;
  const CFReference<CFStringRef> path(CFURLCopyFileSystemPath(url.get(), kCFURLPOSIXPathStyle));
  char text[kTempFilePathSize - 1];
  if (!path || !CFStringGetCString(path.get(), text, sizeof text, kCFStringEncodingUTF8)) return;
  const std::string withSlash = std::string(text) + '/';
  std::memcpy(out, withSlash.c_str(), withSlash.size() + 1);
}

void GetTempFilePath(char* out) {
  const std::string home = HomeFolder();
  if (!home.empty()) WriteDesktopFolder(DesktopFolderOf(home), out);
}

double GetTime() {
  using std::chrono::microseconds;
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return static_cast<double>(std::chrono::duration_cast<microseconds>(now).count()) * 0.000001;
}

void SleepFunction(std::int32_t) { std::this_thread::sleep_for(std::chrono::seconds(1)); }

void* GlobalLockAPI(void* block) { return block; }

void GlobalFreeAPI(void* block) { std::free(block); }

}  // namespace catalogcore
