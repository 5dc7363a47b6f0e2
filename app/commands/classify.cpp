// catalogcore classify: classifies pictures without filing them.
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "app/commands/commands.h"
#include "app/file_finder.h"
#include "app/library.h"
#include "app/ordered_jobs.h"
#include "app/picture.h"
#include "app/text.h"

namespace catalogcore::app {
namespace {

struct ClassifyOptions {
  std::vector<std::string> paths;
  bool isJson = false;
  PictureLimits limits;
};

void Print(const std::string& file, const Decision& decision, bool isJson) {
  const Preset* const preset = FindPreset(decision.preset);
  const char* const pictureClass = PictureClass(decision.preset);
  if (isJson) {
    nlohmann::ordered_json line{{"file", file}, {"class", nullptr}, {"preset", decision.preset}, {"name", nullptr}};
    if (pictureClass) line["class"] = pictureClass;
    if (preset) line["name"] = preset->name;
    line["status"] = preset ? "ok" : decision.problem;
    PrintJsonLine(line);
  } else if (preset) {
    std::printf("%s: %s, %s (%d)\n", ForOutput(file).c_str(), pictureClass ? pictureClass : "undecided", preset->name,
                decision.preset);
  }
}

void Classify(Session& session, const ClassifyOptions& options) {
  StartPictures("catalogcore");
  const Catalog library = OpenLibrary();
  const std::atomic<bool>& stop =
      CatchInterrupts("finishing the pictures under way; press Ctrl-C again to stop immediately");
  FoundFiles found;
  const auto report = [&](const std::string& file, const std::string& reason) {
    Print(file, {-1, reason, ""}, options.isJson);
    session.Skip("cannot read " + found.Shown(file) + ": " + reason + " (skipped)");
  };
  found = FindPictures(
      options.paths, [&stop](std::size_t) { return stop.load(); }, report);
  const std::vector<std::string>& files = found.files;
  PicturePool pictures(options.limits);
  RunInOrder(
      files.size(), pictures.Jobs(), stop, [&](std::size_t i) { return DecideScene(pictures, library, files[i]); },
      [&](std::size_t i, const Decision& decision) {
        session.progress.Clear();
        if (!decision.warning.empty()) session.progress.Say(found.Shown(files[i]) + ": " + decision.warning);
        decision.problem.empty() ? Print(files[i], decision, options.isJson) : report(files[i], decision.problem);
        session.progress.Step(i + 1, files.size(), files[i]);
      });
  session.progress.Clear();
  if (!found.others.empty()) session.progress.Say(OtherKinds(found.others));
  if (stop) session.status = kInterrupted;
}

}  // namespace

void AddClassify(CLI::App& app, Session& session) {
  const auto options = std::make_shared<ClassifyOptions>();
  CLI::App* const command = app.add_subcommand("classify", "Classify pictures without filing them");
  command->add_option("FILE", options->paths, "Image files, and folders to search")->type_name("")->required();
  command->add_flag("--json", options->isJson, "Print one JSON object for each file");
  AddPictureLimits(*command, options->limits);
  command->footer(FixedPictureLimits() +
                  "\n\nExamples:\n"
                  "  catalogcore classify scan.tif\n"
                  "  catalogcore classify --json ~/Scans | jq -r 'select(.class == \"document\").file'");
  command->callback([options, &session] { Classify(session, *options); });
}

}  // namespace catalogcore::app
