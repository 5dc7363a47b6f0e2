#include "app/gallery/gallery_data.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <numeric>
#include <string_view>
#include <unordered_map>

namespace catalogcore::app {
namespace {

using Json = nlohmann::json;

enum State { kMissing = 1, kHasThumbnail = 2, kHasPreview = 4 };

std::size_t NameStart(std::string_view path) { return path.rfind('/') + 1; }  // 0 without a slash

// Sorts the slash before every other byte, so that a folder directly precedes the folders below it.
bool FolderBefore(std::string_view a, std::string_view b) {
  const auto rank = [](char byte) { return byte == '/' ? -1 : int{static_cast<unsigned char>(byte)}; };
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [rank](char x, char y) { return rank(x) < rank(y); });
}

std::vector<std::size_t> PageOrder(const std::vector<GalleryImage>& images) {
  std::vector<std::size_t> order(images.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&images](std::size_t a, std::size_t b) {
    const std::string_view first = images[a].path;
    const std::string_view second = images[b].path;
    const std::string_view folder = first.substr(0, NameStart(first));
    const std::string_view other = second.substr(0, NameStart(second));
    return folder == other ? first < second : FolderBefore(folder, other);
  });
  return order;
}

std::unordered_map<std::int32_t, int> Positions(const std::vector<GalleryIndex>& indexes) {
  std::unordered_map<std::int32_t, int> positions;
  for (std::size_t i = 0; i < indexes.size(); ++i) positions.emplace(indexes[i].number, static_cast<int>(i));
  return positions;
}

int PositionOf(const std::unordered_map<std::int32_t, int>& positions, std::int32_t number) {
  const auto found = positions.find(number);
  return found == positions.end() ? -1 : found->second;
}

// "2024-05-31 18:20:05" as 20240531182005; 0 for anything else.
std::int64_t DateNumber(std::string_view date) {
  constexpr std::string_view kPattern = "dddd-dd-dd dd:dd:dd";
  if (date.size() != kPattern.size()) return 0;
  std::int64_t number = 0;
  for (std::size_t i = 0; i < date.size(); ++i) {
    if (kPattern[i] != 'd') continue;
    if (date[i] < '0' || date[i] > '9') return 0;
    number = number * 10 + (date[i] - '0');
  }
  return number;
}

char StateDigit(const GalleryImage& image, const GalleryRecord& record) {
  int state = 0;
  if (image.missing) state += kMissing;
  if (!record.thumbnail.empty()) state += kHasThumbnail;
  if (record.preview) state += kHasPreview;
  return static_cast<char>('0' + state);
}

Json IndexRows(const std::vector<GalleryIndex>& indexes, const std::unordered_map<std::int32_t, int>& positions) {
  Json rows = Json::array();
  for (const GalleryIndex& index : indexes) {
    // A parent that does not precede its index would make a loop; the index then stands at the top.
    const int parent = PositionOf(positions, index.parent);
    const bool isAbove = parent < static_cast<int>(rows.size());
    rows.push_back({index.number, isAbove ? parent : -1, index.name, index.meaning});
  }
  return rows;
}

std::string AsciiText(const Json& json) { return json.dump(-1, ' ', true, Json::error_handler_t::replace); }

}  // namespace

std::string GalleryData(const std::vector<GalleryIndex>& indexes, const std::vector<GalleryImage>& images,
                        const std::vector<GalleryRecord>& records) {
  const std::unordered_map<std::int32_t, int> positions = Positions(indexes);
  std::vector<std::string_view> folders, names;
  std::vector<std::size_t> starts;
  std::vector<int> filed;
  std::vector<std::int32_t> widths, heights, resolutions;
  std::vector<std::int64_t> dates;
  std::string states, copies;
  for (const std::size_t i : PageOrder(images)) {
    const std::string_view path = images[i].path;
    const std::string_view folder = path.substr(0, NameStart(path));
    if (folders.empty() || folders.back() != folder) {
      folders.push_back(folder);
      starts.push_back(names.size());
    }
    const GalleryRecord& record = records[i];
    names.push_back(path.substr(folder.size()));
    filed.push_back(PositionOf(positions, images[i].index));
    widths.push_back(record.facts.width);
    heights.push_back(record.facts.height);
    resolutions.push_back(record.facts.resolution);
    dates.push_back(DateNumber(record.facts.date));
    states += StateDigit(images[i], record);
    copies += record.thumbnail.empty() ? std::string(16, '0') : record.thumbnail;
  }
  const Json catalogue = {{"indexes", IndexRows(indexes, positions)},
                          {"folders", folders},
                          {"starts", starts},
                          {"names", names},
                          {"filed", filed},
                          {"widths", widths},
                          {"heights", heights},
                          {"resolutions", resolutions},
                          {"dates", dates},
                          {"states", states},
                          {"copies", copies}};
  // Browsers parse a long JSON text faster than the same data as a script.
  return "const CATALOGUE = JSON.parse(" + AsciiText(AsciiText(catalogue)) + ");\n";
}

}  // namespace catalogcore::app
