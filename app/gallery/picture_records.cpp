#include "app/gallery/picture_records.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string_view>

#include "app/gallery/gallery.h"
#include "app/gallery/whole_file.h"

namespace catalogcore::app {
namespace {

using Json = nlohmann::json;

constexpr int kFormat = 1;  // records of another format are made anew

Json ToJson(const PictureRecord& record) {
  const PictureFacts& facts = record.facts;
  return {record.changed,   record.size, facts.width,      facts.height,
          facts.resolution, facts.date,  record.thumbnail, record.preview};
}

// Names become paths: nothing but a hash is taken from the file.
bool IsCopyName(std::string_view name) {
  return name.size() == 16 && name.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

PictureRecord FromJson(const Json& json) {
  PictureRecord record;
  json.at(0).get_to(record.changed);
  json.at(1).get_to(record.size);
  json.at(2).get_to(record.facts.width);
  json.at(3).get_to(record.facts.height);
  json.at(4).get_to(record.facts.resolution);
  json.at(5).get_to(record.facts.date);
  json.at(6).get_to(record.thumbnail);
  json.at(7).get_to(record.preview);
  if (!IsCopyName(record.thumbnail)) record.thumbnail.clear();
  return record;
}

PictureRecords ReadRecords(const std::filesystem::path& file) try {
  std::ifstream stream(file, std::ios::binary);
  const Json json = Json::parse(stream);
  PictureRecords records;
  if (json.at("format") != kFormat) return records;
  for (const auto& [path, record] : json.at("pictures").items()) records.emplace(path, FromJson(record));
  return records;
} catch (const Json::exception&) {
  throw std::runtime_error(file.string() +
                           " is damaged or not a gallery's: remove it with the folder, or choose another folder");
}

}  // namespace

PictureRecords OpenRecords(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) throw std::runtime_error("cannot make the folder " + folder.string() + ": " + error.message());
  if (std::filesystem::exists(folder / kGalleryMark, error)) return ReadRecords(folder / kGalleryMark);
  const bool empty = std::filesystem::is_empty(folder, error);
  if (error) throw std::runtime_error("cannot read the folder " + folder.string() + ": " + error.message());
  if (!empty) {
    throw std::runtime_error(folder.string() + " holds other files and no gallery: choose an empty or a new folder");
  }
  WriteRecords(folder, {});  // a first run that is interrupted leaves a gallery too
  return {};
}

void WriteRecords(const std::filesystem::path& folder, const PictureRecords& records) {
  Json pictures = Json::object();
  for (const auto& [path, record] : records) pictures[path] = ToJson(record);
  const Json json = {{"format", kFormat}, {"pictures", std::move(pictures)}};
  WriteWholeFile(folder / kGalleryMark, json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

}  // namespace catalogcore::app
