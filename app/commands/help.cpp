// catalogcore help, and the messages for an invalid command line.
#include <algorithm>
#include <cstdio>
#include <memory>

#include "app/commands/commands.h"

namespace catalogcore::app {
namespace {

// The number of letters to insert, delete, replace or swap with the next one to turn one word into the other.
std::size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::vector<std::size_t>> distances(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t k = 0; k <= b.size(); ++k) {
      std::size_t& distance = distances[i][k];
      distance = std::max(i, k);
      if (i == 0 || k == 0) continue;
      distance = std::min(
          {distances[i - 1][k] + 1, distances[i][k - 1] + 1, distances[i - 1][k - 1] + (a[i - 1] == b[k - 1] ? 0 : 1)});
      const bool isSwapped = i > 1 && k > 1 && a[i - 1] == b[k - 2] && a[i - 2] == b[k - 1];
      if (isSwapped) distance = std::min(distance, distances[i - 2][k - 2] + 1);
    }
  }
  return distances[a.size()][b.size()];
}

// The subcommand with the most similar name; empty if none is similar.
std::string Nearest(const CLI::App& command, const std::string& name) {
  constexpr std::size_t kLongest = 32;  // longer names are not compared
  constexpr std::size_t kFar = 3;       // not similar
  std::string nearest;
  std::size_t least = kFar;
  for (const CLI::App* const other : command.get_subcommands([](const CLI::App*) { return true; })) {
    const std::string& candidate = other->get_name();
    if (name.size() > kLongest) break;
    const std::size_t distance = Distance(name, candidate);
    if (distance >= std::min(least, candidate.size())) continue;
    least = distance;
    nearest = candidate;
  }
  return nearest;
}

std::string NoCommand(const CLI::App& command, const std::string& fullName, const std::string& name) {
  const std::string nearest = Nearest(command, name);
  return "there is no command \"" + name + '"' + (nearest.empty() ? "" : "; did you mean \"" + nearest + "\"?") +
         " (`" + fullName + " --help` lists the commands)";
}

void PrintHelp(const CLI::App& root, const std::vector<std::string>& names) {
  const CLI::App* command = &root;
  std::string fullName = root.get_name();
  for (const std::string& name : names) {
    const auto below = command->get_subcommands([&name](const CLI::App* other) { return other->get_name() == name; });
    if (below.empty()) throw UsageError(NoCommand(*command, fullName, name));
    command = below.front();
    fullName += ' ' + name;
  }
  std::fputs(command->get_formatter()->make_help(command, fullName, CLI::AppFormatMode::Normal).c_str(), stdout);
}

}  // namespace

void AddHelp(CLI::App& app) {
  const auto names = std::make_shared<std::vector<std::string>>();
  CLI::App* const command = app.add_subcommand("help", "Describe a command");
  command->add_option("COMMAND", *names, "The command; without it, list all commands")->type_name("");
  command->footer("Examples:\n  catalogcore help sort\n  catalogcore help index add");
  command->callback([names, &app] { PrintHelp(app, *names); });
}

std::string WrongUse(const CLI::App& app, const CLI::ParseError& error) {
  const CLI::App* command = &app;
  std::string fullName = app.get_name();
  while (!command->get_subcommands().empty()) {
    command = command->get_subcommands().front();
    fullName += ' ' + command->get_name();
  }
  const std::string what = error.what();
  const std::string hint = " (see `" + fullName + " --help`)";
  if (command->get_subcommands([](const CLI::App*) { return true; }).empty()) return what + hint;
  const std::vector<std::string> unknown = app.remaining(true);
  if (unknown.empty()) return (error.get_name() == "RequiredError" ? "a command is missing" : what) + hint;
  if (unknown.front().rfind('-', 0) == 0) return "there is no option " + unknown.front() + hint;
  return NoCommand(*command, fullName, unknown.front());
}

}  // namespace catalogcore::app
