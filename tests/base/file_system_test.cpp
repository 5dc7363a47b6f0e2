#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>

#include "base/platform_shims.h"

namespace catalogcore {

namespace {

namespace fs = std::filesystem;

class FileSystem : public testing::Test {
 protected:
  FileSystem() : folder_(fs::temp_directory_path() / ("catalogcore_" + std::to_string(getpid()))) {
    fs::create_directories(folder_ / ".config");
  }
  ~FileSystem() override { fs::remove_all(folder_); }
  const fs::path folder_;
};

TEST_F(FileSystem, DesktopFolderIsTheAccountsOwn) {
  EXPECT_EQ(DesktopFolderOf(folder_), folder_ / "Desktop");
  const auto settings = [this](const char* text) { std::ofstream(folder_ / ".config/user-dirs.dirs") << text; };
  settings("# a comment\nXDG_MUSIC_DIR=\"$HOME/Music\"\nXDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n");
  EXPECT_EQ(DesktopFolderOf(folder_), folder_ / "Schreibtisch");
  settings("XDG_DESKTOP_DIR=\"/srv/desk\"\n");
  EXPECT_EQ(DesktopFolderOf(folder_), "/srv/desk");
  settings("XDG_DESKTOP_DIR=\"\nXDG_DESKTOP_DIR=\"relative\"\n");
  EXPECT_EQ(DesktopFolderOf(folder_), folder_ / "Desktop");
}

TEST_F(FileSystem, DesktopPathIsWrittenOnlyIfItFits) {
  char out[kTempFilePathSize + 1] = "untouched";
  WriteDesktopFolder(folder_ / "missing", out);
  EXPECT_STREQ(out, "untouched");
  const std::string base = folder_;
  ASSERT_LT(base.size(), 80u);
  const std::string fits = base + "/" + std::string(kTempFilePathSize - 3 - base.size(), 'x');
  fs::create_directory(fits);
  fs::create_directory(fits + "x");
  WriteDesktopFolder(fits + "x", out);
  EXPECT_STREQ(out, "untouched");
  out[kTempFilePathSize] = '!';
  WriteDesktopFolder(fits, out);
  EXPECT_EQ(out, fits + "/");
  EXPECT_EQ(out[kTempFilePathSize], '!');
}

TEST(Clock, CountsSecondsAndTheirParts) {
  EXPECT_NEAR(GetTime(), static_cast<double>(std::time(nullptr)), 60);
  const double begin = GetTime();
  double now = begin;
  while (now == begin) now = GetTime();
  EXPECT_LT(now - begin, 0.5);
}

}  // namespace

}  // namespace catalogcore
