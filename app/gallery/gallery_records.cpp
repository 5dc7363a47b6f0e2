#include "app/gallery/gallery_records.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>

#include "app/gallery/gallery.h"

namespace catalogcore::app {
namespace {

using Json = nlohmann::json;

constexpr int kFormat = 1;  // records of another format are discarded

Json ToJson(const GalleryRecord& record) {
  const PictureFacts& facts = record.facts;
  return {record.changed,   record.size, facts.width,      facts.height,
          facts.resolution, facts.date,  record.thumbnail, record.preview};
}

GalleryRecord FromJson(const Json& json) {
  GalleryRecord record;
  json.at(0).get_to(record.changed);
  json.at(1).get_to(record.size);
  json.at(2).get_to(record.facts.width);
  json.at(3).get_to(record.facts.height);
  json.at(4).get_to(record.facts.resolution);
  json.at(5).get_to(record.facts.date);
  json.at(6).get_to(record.thumbnail);
  json.at(7).get_to(record.preview);
  if (!IsCopyName(record.thumbnail)) record.thumbnail.clear();  // the name becomes part of a path
  return record;
}

GalleryRecords ReadRecords(const FileDescriptor& file, const std::string& name) try {
  const Json json = Json::parse(ReadWholeFile(file));
  GalleryRecords records;
  if (json.at("format") != kFormat) return records;
  for (const auto& [path, record] : json.at("pictures").items()) records.emplace(path, FromJson(record));
  return records;
} catch (const Json::exception&) {
  throw std::runtime_error(
      name + " is damaged or belongs to another program: remove it with its folder, or choose another folder");
} catch (const std::system_error& error) {
  throw std::runtime_error("cannot read " + name + ": " + error.code().message());
}

}  // namespace

bool IsCopyName(std::string_view name) {
  return name.size() == 16 && name.find_first_not_of("0123456789abcdef") == name.npos;
}

GalleryRecords OpenRecords(const Folder& folder, const Readers& readers) {
  const FileDescriptor file = OpenRegularFile(folder.Descriptor(), kGalleryMark, O_RDONLY | O_NOFOLLOW);
  const std::string name = (folder.Path() / kGalleryMark).string();
  if (file.IsOpen()) return ReadRecords(file, name);
  if (errno != ENOENT) {
    throw std::runtime_error("cannot read " + name + ": " + WhyNotOpened(errno) +
                             " (move it away, or choose another folder)");
  }
  const std::vector<std::string> names = folder.Names();
  if (!std::all_of(names.begin(), names.end(), Folder::IsTemporary)) {
    throw std::runtime_error(folder.Path().string() +
                             " holds other files and is not a gallery: choose an empty or a new folder");
  }
  WriteRecords(folder, {}, readers);  // marks the folder even if this run is interrupted
  return {};
}

void WriteRecords(const Folder& folder, const GalleryRecords& records, const Readers& readers) {
  Json pictures = Json::object();
  for (const auto& [path, record] : records) pictures[path] = ToJson(record);
  const Json json = {{"format", kFormat}, {"pictures", std::move(pictures)}};
  folder.Replace(kGalleryMark, json.dump(-1, ' ', false, Json::error_handler_t::replace), readers);
}

}  // namespace catalogcore::app
