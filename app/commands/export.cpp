// catalogcore export: every image, for other programs.
#include <cstdio>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "app/commands/commands.h"

namespace catalogcore::app {
namespace {

// RFC 4180: quoted, with quotes doubled.
std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char byte : text) quoted += byte == '"' ? std::string("\"\"") : std::string(1, byte);
  return quoted + '"';
}

void ExportCsv(const Catalog& catalog, const IndexTree& tree) {
  std::fputs("file,folder,index,name,attribute,missing\r\n", stdout);
  catalog.ForEachImage({}, [&](const Image& image) {
    std::printf("%s,%s,%d,%s,%d,%d\r\n", CsvField(image.path).c_str(),
                CsvField(std::filesystem::path(image.path).parent_path().string()).c_str(), image.index,
                CsvField(tree.NameOf(image.index)).c_str(), static_cast<int>(image.attributes),
                catalog.IsMissing(image.path) ? 1 : 0);
  });
}

// A list with a line for each image, made line by line, for catalogues that are larger than is good for one text.
void ExportJson(const Catalog& catalog, const IndexTree& tree) {
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
    std::fputs(line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace).c_str(), stdout);
  });
  std::puts(isFirst ? "[]" : "\n]");
}

}  // namespace

void AddExport(CLI::App& app, Session& session) {
  const auto format = std::make_shared<std::string>();
  CLI::App* const command = app.add_subcommand("export", "Print every image with its index, folder and attribute");
  command->add_option("--format", *format, "json or csv")
      ->type_name("FORMAT")
      ->required()
      ->check(CLI::IsMember({"json", "csv"}));
  command->footer("Example:\n  catalogcore export --format csv > pictures.csv");
  command->callback([format, &session] {
    std::optional<Catalog> opened;
    const Catalog& catalog = OpenForReading(session, opened);
    const IndexTree tree(catalog);
    *format == "csv" ? ExportCsv(catalog, tree) : ExportJson(catalog, tree);
  });
}

}  // namespace catalogcore::app
