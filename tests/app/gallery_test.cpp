// The folder of a gallery from run to run. The pictures are text files; "bad" is a damaged one.
#include "app/gallery/gallery.h"

#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

namespace catalogcore::app {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::TempDir;

std::string ReadText(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

void WriteText(const fs::path& file, const std::string& text) {
  fs::create_directories(file.parent_path());
  std::ofstream(file) << text;
}

class GalleryTest : public testing::Test {
 protected:
  GalleryTest() {
    fs::remove_all(home_);
    request_.folder = home_ / "page";
    request_.jobs = 3;
    request_.stop = &stop_;
    request_.readFacts = [this](const fs::path& file) {
      stop_ = ++opened_ == stopAt_;
      if (ReadText(file) == "bad") throw PictureError("not an image file");
      return PictureFacts{1240, 1754, 150, "2024-05-31 18:20:05"};
    };
    request_.makeCopy = [](const fs::path& file, int side) { return ReadText(file) + " " + std::to_string(side); };
    request_.indexes = {{1000000, -1, "Photographs", ""}, {1010000, 1000000, "People", "photographs that show faces"}};
    for (const char* name : {"a/1.jpg", "a/2.jpg", "b.tif"}) Add(name, name);
  }
  ~GalleryTest() override { fs::remove_all(home_); }

  void Add(const std::string& name, const std::string& text) {
    WriteText(home_ / name, text);
    request_.images.push_back({(home_ / name).string(), 1010000});
  }

  json Data() const {
    const std::string script = ReadText(request_.folder / "data.js");
    const auto start = script.find('"');
    return json::parse(json::parse(script.substr(start, script.rfind('"') + 1 - start)).get<std::string>());
  }

  std::multiset<std::string> Copies(const char* kind) const {
    std::multiset<std::string> contents;
    for (const auto& entry : fs::recursive_directory_iterator(request_.folder / kind)) {
      if (entry.is_regular_file()) contents.insert(ReadText(entry.path()));
    }
    return contents;
  }

  // The number of files that a run opens; checks its numbers of new thumbnails and of failures.
  int OpenedBy(std::size_t made, std::size_t failed = 0) {
    opened_ = 0;
    stop_ = false;
    const GalleryReport report = WriteGallery(request_);
    EXPECT_TRUE(report.made == made && report.failed.size() == failed) << report.made << ' ' << report.failed.size();
    return opened_;
  }

  const fs::path home_ = fs::path(TempDir()) / ("gallery_" + std::to_string(::getpid()));
  GalleryRequest request_;
  std::atomic<int> opened_{0};
  int stopAt_ = 0;  // the file whose opening stops the run; 0: none
  std::atomic<bool> stop_{false};
};

TEST_F(GalleryTest, OpensFilesOnceAndAgainWhenTheyChange) {
  using Texts = std::multiset<std::string>;
  Add("c.jpg", "bad");
  EXPECT_EQ(OpenedBy(3, 1), 4);
  EXPECT_EQ(OpenedBy(0, 1), 1) << "a broken picture is opened by every run";
  request_.images.pop_back();
  EXPECT_EQ(Copies("thumbs"), (Texts{"a/1.jpg 256", "a/2.jpg 256", "b.tif 256"}));
  EXPECT_EQ(Copies("previews"), Texts{"b.tif 1600"});
  EXPECT_EQ(OpenedBy(0), 0);

  WriteText(home_ / "a/1.jpg", "new");
  fs::remove_all(request_.folder / "previews");
  EXPECT_EQ(OpenedBy(1), 2);
  EXPECT_EQ(Copies("thumbs"), (Texts{"new 256", "a/2.jpg 256", "b.tif 256"}));
  EXPECT_EQ(Copies("previews"), Texts{"b.tif 1600"});

  request_.images.resize(1);
  EXPECT_EQ(OpenedBy(0), 0);
  EXPECT_EQ(Copies("thumbs"), Texts{"new 256"});
  EXPECT_EQ(Copies("previews"), Texts{});
}

TEST_F(GalleryTest, KeepsWhatAFormerRunSawOfAMissingFile) {
  OpenedBy(3);
  for (GalleryImage& image : request_.images) {
    fs::remove(image.path);
    image.missing = true;
  }
  request_.images.push_back({home_ / "z/never seen.jpg", 1010000, true});
  EXPECT_EQ(OpenedBy(0), 0);
  EXPECT_EQ(Copies("thumbs").size(), 3);
  EXPECT_EQ(Data().at("states"), "7331");
  EXPECT_EQ(Data().at("dates").at(3), 0);
  request_.images.resize(3);
  for (GalleryImage& image : request_.images) image.missing = false;  // gone since it was asked for
  EXPECT_EQ(OpenedBy(0, 3), 0);
  EXPECT_EQ(Copies("thumbs").size(), 3);
}

TEST_F(GalleryTest, GoesOnAfterARunThatWasStopped) {
  request_.jobs = 1;
  stopAt_ = 2;
  std::size_t reported = 0;
  request_.progress = [&](std::size_t done, std::size_t total, const std::string&) {
    EXPECT_TRUE(done == ++reported && total == 3);
  };
  EXPECT_EQ(OpenedBy(2), 2);
  EXPECT_EQ(reported, 2);
  EXPECT_EQ(Data().at("names").size(), 3);
  EXPECT_TRUE(fs::exists(request_.folder / "index.html"));
  stopAt_ = 0;
  request_.progress = nullptr;
  EXPECT_EQ(OpenedBy(1), 1);

  Add("c.jpg", "");
  request_.progress = [](std::size_t, std::size_t, const std::string&) { throw std::bad_alloc(); };
  EXPECT_THROW(WriteGallery(request_), std::bad_alloc);
  request_.progress = nullptr;
  EXPECT_EQ(OpenedBy(0), 1);  // the thumbnail was there
}

TEST_F(GalleryTest, RefusesAFolderOfSomethingElse) {
  for (const std::string name : {"page/letter.txt", "page/catalogcore-gallery.json", "page"}) {
    WriteText(home_ / name, "{\"format\":1,\"pict");
    EXPECT_THROW(WriteGallery(request_), std::runtime_error) << name;
    EXPECT_TRUE(ReadText(home_ / name).ends_with("pict") && !fs::exists(home_ / "page/index.html")) << name;
    fs::remove_all(home_ / "page");
  }
}

TEST_F(GalleryTest, CarriesAnyNameInTheOrderOfFolders) {
  const std::vector<std::string> names = {"/a/b/</script>\xe2\x80\xa8\"'\\.jpg", "/a/\xf0\x9f\x8e\x89.jpg",
                                          "/a-b/" + std::string(5000, 'n'), "no folder", "/a/b/bad \xff utf-8"};
  request_.images.clear();
  for (const std::string& name : names) request_.images.push_back({name, 7, true});
  OpenedBy(0);
  const json data = Data();
  EXPECT_EQ(data.at("folders"), (json{"", "/a/", "/a/b/", "/a/b/</", "/a-b/"}));
  EXPECT_EQ(data.at("starts"), (json{0, 1, 2, 3, 4}));
  EXPECT_EQ(data.at("names").at(0), names[3]);
  EXPECT_EQ(data.at("filed").at(0), -1);
  EXPECT_EQ(data.at("names").at(3), names[0].substr(std::string("/a/b/</").size()));
  EXPECT_EQ(data.at("names").at(4), names[2].substr(std::string("/a-b/").size()));
  for (const char byte : ReadText(request_.folder / "data.js")) ASSERT_TRUE(byte > 0) << "not ASCII";
}

}  // namespace
}  // namespace catalogcore::app
