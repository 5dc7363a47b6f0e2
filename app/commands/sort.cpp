// catalogcore sort: classifies pictures and files them.
#include <chrono>
#include <cstdio>
#include <map>
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

// Bounds what is lost when the machine fails during a long sort.
constexpr std::size_t kPicturesBetweenWrites = 1000;
constexpr std::chrono::minutes kTimeBetweenWrites(3);

constexpr std::size_t kNameColumns = 24;  // at least the longest preset name

struct SortOptions {
  std::vector<std::string> paths;
  bool isAgain = false;
  bool isDryRun = false;
  bool isJson = false;
  PictureLimits limits;
};

class Sorter {
 public:
  Sorter(Session& session, const SortOptions& options, StoredCatalog& catalog)
      : session_(session),
        options_(options),
        catalog_(catalog),
        pictures_(options.limits),
        stop_(CatchInterrupts(options.isDryRun
                                  ? "finishing the pictures under way; press Ctrl-C again to stop immediately"
                                  : "finishing the pictures under way; press Ctrl-C again to stop without saving")) {}

  void Run() {
    const std::vector<std::string> files = Find();
    const auto decide = [&](std::size_t i) { return DecideScene(pictures_, catalog_.Calls(), files[i]); };
    const auto take = [&](std::size_t i, const Decision& decision) {
      Take(files[i], decision);
      session_.progress.Step(i + 1, files.size(), files[i]);
      if (IsWriteDue()) Write();
    };
    try {
      std::optional<IgnoredPipes> pipes;
      if (!options_.isDryRun) pipes.emplace();  // a closed output must not stop the filing
      notReached_ = files.size() - RunInOrder(files.size(), pictures_.Jobs(), stop_, decide, take);
    } catch (const CatalogError&) {
      throw;
    } catch (...) {
      Write();
      throw;
    }
    Write();
    session_.progress.Clear();
    options_.isJson ? PrintJson() : Print();
    if (stop_) session_.status = kInterrupted;
  }

 private:
  // The files to classify: those that the catalogue can hold and, without --again, does not hold yet.
  std::vector<std::string> Find() {
    found_ = FindPictures(
        options_.paths,
        [this](std::size_t count) {
          session_.progress.Count("Searching for pictures", count);
          return stop_.load();
        },
        [this](const std::string& file, const std::string& reason) { Skip("read", file, reason); });
    if (stop_) return {};
    std::vector<std::string> files;
    for (std::string& file : found_.files) {
      const std::string problem = catalog_.WhyNotHeld(file);
      if (!problem.empty()) {
        Skip("file", file, problem);
      } else if (!options_.isAgain && catalog_.Contains(file)) {
        ++already_;
      } else {
        files.push_back(std::move(file));
      }
    }
    return files;
  }

  void Take(const std::string& file, const Decision& decision) {
    if (!decision.problem.empty()) return Skip("read", file, decision.problem);
    if (options_.isDryRun) {
      if (!Announce(file, decision.preset)) return;
    } else {
      const Status status = File(file, decision.preset).error();
      if (status == Status::kMemory) throw CatalogError("out of memory");
      if (status == Status::kImageExists) return Skip("file", file, kCaseTwin);
      if (status != Status::kOk) return Skip("file", file, Message(status));
    }
    if (!decision.warning.empty()) Warn(file, decision.warning);
    ++filed_[decision.preset];
  }

  // Prints the preset of a dry run. False if a protection forbids the move.
  bool Announce(const std::string& file, std::int32_t preset) {
    const std::optional<Image> image = catalog_.FindImage(file);
    if (image && image->index != preset && HasAny(image->attributes, Attributes::kNoMove)) {
      Skip("file", file, Message(Status::kProtected));
      return false;
    }
    if (options_.isJson) {
      planned_.emplace_back(file, preset);
    } else {
      session_.progress.Clear();
      std::printf("%s: %s (%d)\n", ForOutput(file).c_str(), FindPreset(preset)->name, preset);
    }
    return true;
  }

  Result<void> File(const std::string& file, std::int32_t preset) {
    const std::optional<Image> image = catalog_.FindImage(file);
    if (image && image->index == preset) return {};  // no move, so a protection does not matter
    ++unwritten_;
    return image ? catalog_.Calls().ChangeImage(file, {.index = preset}) : catalog_.AddImage(file, preset);
  }

  void Skip(const std::string& verb, const std::string& file, const std::string& reason) {
    session_.Skip("cannot " + verb + ' ' + found_.Shown(file) + ": " + reason + " (skipped)");
    skipped_.emplace_back(file, reason);
  }

  void Warn(const std::string& file, const std::string& warning) {
    session_.progress.Say(found_.Shown(file) + ": " + warning);
    warnings_.emplace_back(file, warning);
  }

  bool IsWriteDue() const {
    return unwritten_ >= kPicturesBetweenWrites ||
           (unwritten_ > 0 && std::chrono::steady_clock::now() - lastWrite_ >= kTimeBetweenWrites);
  }

  void Write() {
    if (unwritten_ > 0) catalog_.SaveImages();
    unwritten_ = 0;
    lastWrite_ = std::chrono::steady_clock::now();
  }

  std::size_t FiledCount() const {
    std::size_t count = 0;
    for (const auto& [preset, pictures] : filed_) count += pictures;
    return count;
  }

  void Print() const {
    const char* const verb = options_.isDryRun ? "Would file " : "Filed ";
    std::printf("%s%s%s\n", verb, Counted(FiledCount(), "picture").c_str(), filed_.empty() ? "." : ":");
    for (const auto& [preset, count] : filed_) {
      const std::string name = FindPreset(preset)->name;
      const std::string padding(kNameColumns - TextWidth(name), ' ');
      std::printf("  %8d  %s%s %8s\n", preset, name.c_str(), padding.c_str(), Grouped(count).c_str());
    }
    if (already_ > 0) std::printf("%s already in the catalogue.\n", Counted(already_, "picture").c_str());
    std::map<std::string, std::size_t> reasons;
    for (const auto& [file, reason] : skipped_) ++reasons[reason];
    if (!skipped_.empty()) std::printf("Skipped %s:\n", Counted(skipped_.size(), "file").c_str());
    for (const auto& [reason, count] : reasons)
      std::printf("  %8s  %s\n", Grouped(count).c_str(), ForOutput(reason).c_str());
    if (!found_.others.empty()) std::printf("%s.\n", OtherKinds(found_.others).c_str());
    if (stop_) std::printf("Stopped: %s not classified.\n", Counted(notReached_, "picture").c_str());
  }

  void PrintJson() const {
    nlohmann::ordered_json result;
    result["filed"] = FiledCount();
    result["presets"] = nlohmann::ordered_json::array();
    for (const auto& [preset, count] : filed_) {
      result["presets"].push_back({{"preset", preset}, {"name", FindPreset(preset)->name}, {"count", count}});
    }
    result["already"] = already_;
    result["skipped"] = nlohmann::ordered_json::array();
    for (const auto& [file, reason] : skipped_) {
      result["skipped"].push_back({{"file", file}, {"reason", reason}});
      if (const std::string link = found_.LinkTo(file); !link.empty()) result["skipped"].back()["link"] = link;
    }
    result["passedOver"] = nlohmann::ordered_json::object();
    for (const auto& [kind, count] : found_.others) result["passedOver"][kind] = count;
    if (options_.isDryRun) result["files"] = nlohmann::ordered_json::array();
    for (const auto& [file, preset] : planned_) {
      result["files"].push_back({{"file", file}, {"preset", preset}, {"name", FindPreset(preset)->name}});
    }
    result["warnings"] = nlohmann::ordered_json::array();
    for (const auto& [file, warning] : warnings_) result["warnings"].push_back({{"file", file}, {"warning", warning}});
    result["interrupted"] = stop_.load();
    result["dryRun"] = options_.isDryRun;
    PrintJsonLine(result);
  }

  Session& session_;
  const SortOptions& options_;
  StoredCatalog& catalog_;
  PicturePool pictures_;
  const std::atomic<bool>& stop_;
  FoundFiles found_;
  std::vector<std::pair<std::string, std::int32_t>> planned_;  // file and preset of a dry run
  std::map<std::int32_t, std::size_t> filed_;                  // number of pictures by preset
  std::vector<std::pair<std::string, std::string>> skipped_;
  std::vector<std::pair<std::string, std::string>> warnings_;
  std::size_t already_ = 0;
  std::size_t notReached_ = 0;
  std::size_t unwritten_ = 0;
  std::chrono::steady_clock::time_point lastWrite_ = std::chrono::steady_clock::now();
};

void Sort(Session& session, const SortOptions& options) {
  StartPictures("catalogcore");
  if (options.isDryRun) {
    std::optional<StoredCatalog> catalog;
    return Sorter(session, options, OpenForReading(session, catalog)).Run();
  }
  Change(session, "sort", [&](StoredCatalog& catalog) { Sorter(session, options, catalog).Run(); });
}

}  // namespace

void AddSort(CLI::App& app, Session& session) {
  const auto options = std::make_shared<SortOptions>();
  CLI::App* const command = app.add_subcommand("sort", "Classify pictures and file each under its preset index");
  command->add_option("PATH", options->paths, "Image files, and folders to search")->type_name("")->required();
  command->add_flag("--again", options->isAgain, "Also classify pictures in the catalogue again, and move them");
  command->add_flag("--dry-run", options->isDryRun, "Print the index for each file without filing anything");
  command->add_flag("--json", options->isJson, "Print the result as one JSON object");
  AddPictureLimits(*command, options->limits);
  command->footer(
      "Searches folders and the folders below them for JPEG, PNG, TIFF, WebP and HEIF files. Passes over hidden "
      "files,\n"
      "hidden folders, galleries and files of other kinds, which are counted. Never changes or moves the files\n"
      "themselves. The first Ctrl-C stops the command and keeps what was filed. A second Ctrl-C ends it immediately "
      "and\n"
      "loses the pictures filed since the last write: at most 1,000 pictures or three minutes of work.\n\n" +
      FixedPictureLimits() +
      "\n\nExamples:\n"
      "  catalogcore sort ~/Pictures ~/Scans\n"
      "  catalogcore sort --dry-run --json holiday/*.jpg");
  command->callback([options, &session] { Sort(session, *options); });
}

}  // namespace catalogcore::app
