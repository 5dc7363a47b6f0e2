#include "base/platform_shims.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <fstream>

namespace catalogcore {

namespace {

namespace fs = std::filesystem;

TEST(PlatformShims, WriteTheDesktopFolderOfTheAccountIfItsPathFits) {
  const fs::path home = fs::temp_directory_path() / ("catalogcore_" + std::to_string(getpid()));
  fs::create_directories(home / ".config");
  for (const auto& [settings, folder] : {
           std::pair{"# comment\nXDG_MUSIC_DIR=\"$HOME/Music\"\nXDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n",
                     home / "Schreibtisch"},
           {"XDG_DESKTOP_DIR=\"/srv/desk\"\n", "/srv/desk"},
           {"XDG_DESKTOP_DIR=\"\nXDG_DESKTOP_DIR=\"relative\"\n", home / "Desktop"},
       }) {
    std::ofstream(home / ".config/user-dirs.dirs") << settings;
    EXPECT_EQ(DesktopFolderOf(home), folder) << settings;
  }

  char out[kTempFilePathSize + 1] = "unchanged";
  out[kTempFilePathSize] = '!';
  const std::string fits = (home / std::string(kTempFilePathSize - 3 - home.native().size(), 'x')).native();
  for (const std::string& folder : {fits, fits + "x"}) fs::create_directory(folder);
  WriteDesktopFolder(home / "missing", out);
  WriteDesktopFolder(fits + "x", out);
  EXPECT_STREQ(out, "unchanged");
  WriteDesktopFolder(fits, out);
  EXPECT_EQ(out, fits + "/");
  EXPECT_EQ(out[kTempFilePathSize], '!');
  fs::remove_all(home);
}

TEST(PlatformShims, ClockCountsSecondsAndTheirParts) {
  const double begin = GetTime();
  EXPECT_NEAR(begin, static_cast<double>(std::time(nullptr)), 60);
  double now = begin;
  while (now == begin) now = GetTime();
  EXPECT_LT(now - begin, 0.5);
}

}  // namespace

}  // namespace catalogcore
