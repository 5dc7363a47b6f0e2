// catalogcore export: all images as CSV or JSON.
#include <cstdio>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "app/commands/commands.h"
#include "app/text.h"

namespace catalogcore::app {
namespace {

void ExportCsv(const StoredCatalog& catalog, const IndexTree& tree) {
  std::fputs("file,folder,index,name,attribute,missing\r\n", stdout);
  catalog.ForEachImage({}, [&](const Image& image) {
    std::printf("%s,%s,%d,%s,%d,%d\r\n", CsvField(ForOutput(image.path)).c_str(),
                CsvField(ForOutput(std::filesystem::path(image.path).parent_path().string())).c_str(), image.index,
                CsvField(ForOutput(tree.NameOf(image.index))).c_str(), static_cast<int>(image.attributes),
                catalog.IsMissing(image.path) ? 1 : 0);
  });
}

// A JSON list with one image a line. Printed line by line: a large catalogue should not become one text in memory.
void ExportJson(const StoredCatalog& catalog, const IndexTree& tree) {
  bool isFirst = true;
  catalog.ForEachImage({}, [&](const Image& image) {
    std::puts(isFirst ? "[" : ",");
    isFirst = false;
    const nlohmann::ordered_json line{{"file", image.path},
                                      {"folder", std::filesystem::path(image.path).parent_path().string()},
                                      {"index", image.index},
                                      {"name", tree.NameOf(image.index)},
                                      {"attribute", image.attributes},
                                      {"missing", catalog.IsMissing(image.path)}};
    std::fputs(JsonText(line).c_str(), stdout);
  });
  std::puts(isFirst ? "[]" : "\n]");
}

}  // namespace

void AddExport(CLI::App& app, Session& session) {
  const auto format = std::make_shared<std::string>();
  CLI::App* const command = app.add_subcommand("export", "Print every image with its folder, index and attribute");
  command->add_option("--format", *format, "json or csv")
      ->type_name("FORMAT")
      ->required()
      ->check(CLI::IsMember({"json", "csv"}));
  command->footer(
      "In CSV, text that begins with = + - @ tab or CR gets an apostrophe (') in front, so that no spreadsheet runs "
      "it\n"
      "as a formula. JSON holds every name unchanged. On a terminal, CSV shows control characters as escapes (\\x1B,\n"
      "\\u202E) and a backslash as two.\n\n"
      "Example:\n  catalogcore export --format csv > pictures.csv");
  command->callback([format, &session] {
    std::optional<StoredCatalog> opened;
    const StoredCatalog& catalog = OpenForReading(session, opened);
    const IndexTree tree(catalog);
    *format == "csv" ? ExportCsv(catalog, tree) : ExportJson(catalog, tree);
  });
}

}  // namespace catalogcore::app
