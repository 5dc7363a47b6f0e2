// The commands. Each Add function adds one to the command line with its options and its help text. The options that several
// commands share follow.
#ifndef CATALOGCORE_APP_COMMANDS_COMMANDS_H_
#define CATALOGCORE_APP_COMMANDS_COMMANDS_H_

#include <CLI/CLI.hpp>

#include "app/index_tree.h"
#include "app/picture_pool.h"
#include "app/session.h"

namespace catalogcore::app {

void AddSort(CLI::App& app, Session& session);
void AddClassify(CLI::App& app, Session& session);
void AddList(CLI::App& app, Session& session);
void AddTree(CLI::App& app, Session& session);
void AddIndexCommands(CLI::App& app, Session& session);
void AddImageCommands(CLI::App& app, Session& session);
void AddCheck(CLI::App& app, Session& session);
void AddGallery(CLI::App& app, Session& session);
void AddExport(CLI::App& app, Session& session);
void AddHelp(CLI::App& app);

// The message for a command line that `app` failed to parse.
std::string WrongUse(const CLI::App& app, const CLI::ParseError& error);

// Adds the options --jobs, --memory and --time-limit.
void AddPictureLimits(CLI::App& command, PictureLimits& limits);

// The paragraph of the help text about the limits that have no option.
std::string FixedPictureLimits();

inline constexpr Attributes kAllProtections = Attributes::kNoMove | Attributes::kNoRemove | Attributes::kNoRename;

struct ProtectionOptions {
  bool noMove = false;
  bool noRemove = false;
  bool noRename = false;
  bool none = false;

  // Throws UsageError if no option was given.
  void RequireAny() const;

  // The attributes after --none removed the protections and the other options added theirs. Other bits are unchanged.
  Attributes Applied(Attributes attributes) const;
};

// Adds --no-move and --no-remove, and for an index --no-rename.
void AddProtection(CLI::App& command, ProtectionOptions& options, bool isIndex);

// The options of a change with or without --force.
constexpr Options ForcedIf(bool isForced) { return isForced ? Options::kForce : Options::kNone; }

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_COMMANDS_COMMANDS_H_
