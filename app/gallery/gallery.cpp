#include "app/gallery/gallery.h"

#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <exception>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>

#include "app/folder.h"
#include "app/gallery/gallery_data.h"
#include "app/gallery/page_files.h"
#include "app/gallery/gallery_records.h"
#include "app/gallery/small_copies.h"

namespace catalogcore::app {
namespace {

namespace fs = std::filesystem;

// One run. Every image has a record and a failure (empty: none) at its own place, which one thread at a time works on.
class GalleryRun {
 public:
  explicit GalleryRun(const GalleryRequest& request)
      : request_(request),
        readers_(ReadersOf(request.catalogueFile)),
        folder_(request.folder),
        former_(OpenRecords(folder_, readers_)),
        copies_(folder_, request.pictures),
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

  // Gives every image the record of a former run and finds those whose file has to be opened.
  void TakeOver() {
    for (std::size_t i = 0; i < records_.size(); ++i) {
      const GalleryImage& image = request_.images[i];
      const auto found = former_.find(image.path);
      if (found != former_.end()) records_[i] = std::move(found->second);
      PictureRecord now;
      Readers readers;
      const bool isThere = !image.missing && !ReadStamp(image.path, now, readers);
      const bool hasCopies = copies_.Check(image.path, records_[i], readers);
      const bool isSame = isThere && now.changed == records_[i].changed && now.size == records_[i].size;
      if (!image.missing && !(isSame && hasCopies)) stale_.push_back(i);
    }
    former_.clear();
  }

  static std::error_code ReadStamp(const fs::path& file, PictureRecord& record, Readers& readers) {
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
    PictureRecord unused;
    Readers readers;
    ReadStamp(file, unused, readers);
    return readers;
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
    Readers readers;
    if (const std::error_code error = ReadStamp(path, record, readers)) {
      failures_[i] = error.message();
      return false;
    }
    bool made = false;
    try {
      made = copies_.Make(path, record, readers);
    } catch (const PictureError& error) {
      failures_[i] = error.what();
    }
    records_[i] = std::move(record);
    return made;
  }

  void WriteFiles() const {
    PictureRecords records;
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
    for (const PictureRecord& record : records_) {
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
  PictureRecords former_;  // what a former run left
  const SmallCopies copies_;
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
