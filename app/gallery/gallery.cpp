#include "app/gallery/gallery.h"

#include <exception>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>

#include "app/gallery/gallery_data.h"
#include "app/gallery/page_files.h"
#include "app/gallery/picture_records.h"
#include "app/gallery/small_copies.h"
#include "app/gallery/whole_file.h"

namespace catalogcore::app {
namespace {

namespace fs = std::filesystem;

// One run. Every image has a record and a failure (empty: none) at its own place, which one thread at a time works on.
class GalleryRun {
 public:
  explicit GalleryRun(const GalleryRequest& request)
      : request_(request), copies_(request.folder), records_(request.images.size()), failures_(request.images.size()) {}

  GalleryReport Write() {
    TakeOver(OpenRecords(request_.folder));
    MakeCopies();
    WriteFiles();
    if (!IsStopped()) RemoveOthers();
    return Report();
  }

 private:
  bool IsStopped() const { return request_.stop != nullptr && *request_.stop; }

  // Gives every image the record of a former run and finds those whose file has to be opened.
  void TakeOver(PictureRecords former) {
    for (std::size_t i = 0; i < records_.size(); ++i) {
      const GalleryImage& image = request_.images[i];
      const auto found = former.find(image.path);
      if (found != former.end()) records_[i] = std::move(found->second);
      const bool has_copies = copies_.Check(image.path, records_[i]);
      if (!image.missing && !(HasFileOf(i) && has_copies)) stale_.push_back(i);
    }
  }

  // Whether the record is of the file as it is now.
  bool HasFileOf(std::size_t i) const {
    PictureRecord now;
    return !ReadStamp(request_.images[i].path, now) && now.changed == records_[i].changed &&
           now.size == records_[i].size;
  }

  static std::error_code ReadStamp(const fs::path& file, PictureRecord& record) {
    std::error_code error;
    record.changed = fs::last_write_time(file, error).time_since_epoch().count();
    if (!error) record.size = fs::file_size(file, error);
    return error;
  }

  void MakeCopies() {
    std::vector<std::jthread> threads;
    for (unsigned i = 1; i < request_.jobs && i < stale_.size(); ++i) threads.emplace_back([this] { WorkOff(); });
    WorkOff();
    threads.clear();  // joins
    if (thrown_) std::rethrow_exception(thrown_);
  }

  // What a thread does: takes the next picture until there is none.
  void WorkOff() try {
    for (std::size_t at = next_++; at < stale_.size() && !IsStopped(); at = next_++) {
      const std::size_t i = stale_[at];
      const bool made = MakeCopiesOf(i);
      const std::lock_guard lock(mutex_);
      made_ += made;
      ++done_;
      if (request_.progress) request_.progress(done_, stale_.size(), request_.images[i].path);
    }
  } catch (...) {
    next_ = stale_.size();
    const std::lock_guard lock(mutex_);
    thrown_ = std::current_exception();
  }

  // Returns whether a thumbnail was made. A file that cannot even be asked for its size keeps what a former run saw.
  bool MakeCopiesOf(std::size_t i) {
    const std::string& path = request_.images[i].path;
    PictureRecord record;
    if (const std::error_code error = ReadStamp(path, record)) {
      failures_[i] = error.message();
      return false;
    }
    bool made = false;
    try {
      made = copies_.Make(path, record);
    } catch (const PictureError& error) {
      failures_[i] = error.what();
    }
    records_[i] = std::move(record);
    return made;
  }

  void WriteFiles() const {
    PictureRecords records;
    for (std::size_t i = 0; i < records_.size(); ++i) records.emplace(request_.images[i].path, records_[i]);
    WriteRecords(request_.folder, records);
    WriteWholeFile(request_.folder / "data.js", GalleryData(request_.indexes, request_.images, records_));
    fs::create_directories(request_.folder / "assets");
    for (const EmbeddedFile& file : PageFiles()) WriteWholeFile(request_.folder / file.name, file.content);
  }

  void RemoveOthers() const {
    std::set<std::string> thumbnails, previews;
    for (const PictureRecord& record : records_) {
      thumbnails.insert(record.thumbnail);
      if (record.preview) previews.insert(record.thumbnail);
    }
    copies_.RemoveOthers(thumbnails, previews);
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
  SmallCopies copies_;
  std::vector<PictureRecord> records_;
  std::vector<std::string> failures_;
  std::vector<std::size_t> stale_;    // images whose file has to be opened
  std::atomic<std::size_t> next_{0};  // place in stale_
  std::mutex mutex_;                  // of the three below
  std::size_t made_ = 0;
  std::size_t done_ = 0;
  std::exception_ptr thrown_;
};

}  // namespace

GalleryReport WriteGallery(const GalleryRequest& request) { return GalleryRun(request).Write(); }

}  // namespace catalogcore::app
