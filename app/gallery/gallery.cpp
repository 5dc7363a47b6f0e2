#include "app/gallery/gallery.h"

#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <set>
#include <system_error>

#include "app/folder.h"
#include "app/gallery/gallery_data.h"
#include "app/gallery/gallery_records.h"
#include "app/gallery/page_files.h"
#include "app/gallery/small_copies.h"
#include "app/ordered_jobs.h"

namespace catalogcore::app {
namespace {

namespace fs = std::filesystem;

// One run. Each image has a record and a failure (empty: none) at the image's position. One thread works on an image.
class GalleryRun {
 public:
  explicit GalleryRun(const GalleryRequest& request)
      : request_(request),
        readers_(ReadersOf(request.catalogueFile)),
        folder_(request.folder),
        earlier_(OpenRecords(folder_, readers_)),
        copies_(folder_, request),
        records_(request.images.size()),
        failures_(request.images.size()) {}

  GalleryReport Write() {
    TakeOver();
    MakeCopies();
    WriteFiles();
    if (!IsStopped()) RemoveOthers();
    return Report();
  }

 private:
  bool IsStopped() const { return request_.stop != nullptr && *request_.stop; }

  // Copies the records of an earlier run and finds the images whose file must be opened.
  void TakeOver() {
    for (std::size_t i = 0; i < records_.size(); ++i) {
      const GalleryImage& image = request_.images[i];
      const auto found = earlier_.find(image.path);
      if (found != earlier_.end()) records_[i] = std::move(found->second);
      GalleryRecord now;
      Readers readers;
      const bool isThere = !image.missing && !ReadStamp(image.path, now, readers);
      const bool hasCopies = copies_.Check(image.path, records_[i], readers);
      const bool isSame = isThere && now.changed == records_[i].changed && now.size == records_[i].size;
      if (!image.missing && !(isSame && hasCopies)) stale_.push_back(i);
    }
    earlier_.clear();
  }

  static std::error_code ReadStamp(const fs::path& file, GalleryRecord& record, Readers& readers) {
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) return {errno, std::generic_category()};
    const auto changed = std::chrono::seconds(status.st_mtim.tv_sec) + std::chrono::nanoseconds(status.st_mtim.tv_nsec);
    record.changed = fs::file_time_type::clock::from_sys(std::chrono::sys_time<std::chrono::nanoseconds>(changed))
                         .time_since_epoch()
                         .count();
    record.size = static_cast<std::uintmax_t>(status.st_size);
    readers = Readers(status);
    return {};
  }

  static Readers ReadersOf(const fs::path& file) {
    GalleryRecord unused;
    Readers readers;
    ReadStamp(file, unused, readers);
    return readers;
  }

  void MakeCopies() {
    static const std::atomic<bool> never{false};
    RunInOrder(
        stale_.size(), request_.jobs, request_.stop != nullptr ? *request_.stop : never,
        [this](std::size_t at) { return MakeCopiesOf(stale_[at]); },
        [this](std::size_t at, bool isNew) {
          made_ += isNew ? 1 : 0;
          if (request_.progress) request_.progress(at + 1, stale_.size(), request_.images[stale_[at]].path);
        });
  }

  // Returns whether the thumbnail is new. A file without a status keeps its record of an earlier run.
  bool MakeCopiesOf(std::size_t i) {
    const std::string& path = request_.images[i].path;
    GalleryRecord record;
    Readers readers;
    if (const std::error_code error = ReadStamp(path, record, readers)) {
      failures_[i] = error.message();
      return false;
    }
    bool isNew = false;
    try {
      isNew = copies_.Make(path, record, readers);
    } catch (const PictureError& error) {
      failures_[i] = error.what();
    }
    records_[i] = std::move(record);
    return isNew;
  }

  void WriteFiles() const {
    GalleryRecords records;
    for (std::size_t i = 0; i < records_.size(); ++i) records.emplace(request_.images[i].path, records_[i]);
    WriteRecords(folder_, records, readers_);
    folder_.Replace("data.js", GalleryData(request_.indexes, request_.images, records_), readers_);
    const Folder assets = folder_.Inner("assets");
    for (const EmbeddedFile& file : PageFiles()) {
      const fs::path name = file.name;
      const Folder& folder = name.has_parent_path() ? assets : folder_;
      folder.Replace(name.filename().string(), file.content, Readers());
    }
  }

  void RemoveOthers() const {
    std::set<std::string> thumbnails, previews;
    for (const GalleryRecord& record : records_) {
      thumbnails.insert(record.thumbnail);
      if (record.preview) previews.insert(record.thumbnail);
    }
    copies_.RemoveOthers(thumbnails, previews);
    folder_.RemoveLeftovers();
    folder_.Inner("assets").RemoveLeftovers();
  }

  GalleryReport Report() {
    GalleryReport report;
    report.made = made_;
    for (std::size_t i = 0; i < failures_.size(); ++i) {
      if (!failures_[i].empty()) report.failed.emplace_back(request_.images[i].path, std::move(failures_[i]));
    }
    return report;
  }

  const GalleryRequest& request_;
  const Readers readers_;  // of the catalogue
  const Folder folder_;
  GalleryRecords earlier_;  // of an earlier run
  const SmallCopies copies_;
  std::vector<GalleryRecord> records_;
  std::vector<std::string> failures_;
  std::vector<std::size_t> stale_;  // positions of the images whose file must be opened
  std::size_t made_ = 0;
};

}  // namespace

GalleryReport WriteGallery(const GalleryRequest& request) { return GalleryRun(request).Write(); }

}  // namespace catalogcore::app
