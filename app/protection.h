// The options that say what may not be done to an image or an index.
#ifndef CATALOGCORE_APP_PROTECTION_H_
#define CATALOGCORE_APP_PROTECTION_H_

#include <CLI/CLI.hpp>

#include "app/index_tree.h"
#include "catalogcore.hpp"

namespace catalogcore::app {

inline constexpr Attributes kAllProtections = Attributes::kNoMove | Attributes::kNoRemove | Attributes::kNoRename;

struct ProtectionOptions {
  bool noMove = false;
  bool noRemove = false;
  bool noRename = false;
  bool none = false;

  // Throws UsageError if there is nothing to do.
  void RequireAny() const {
    if (!noMove && !noRemove && !noRename && !none)
      throw UsageError("say what may not be done (see --help), or --none");
  }

  // The attributes with the protections asked for added, or all taken away; an application's own bits stay.
  Attributes Applied(Attributes attributes) const {
    if (none) attributes &= ~kAllProtections;
    if (noMove) attributes |= Attributes::kNoMove;
    if (noRemove) attributes |= Attributes::kNoRemove;
    if (noRename) attributes |= Attributes::kNoRename;
    return attributes;
  }
};

// How a change is made that may have been told --force.
constexpr Options ForcedIf(bool isForced) { return isForced ? Options::kForce : Options::kNone; }

// Only indexes have a name to protect.
inline void AddProtection(CLI::App& command, ProtectionOptions& options, bool isIndex) {
  command.add_flag("--no-move", options.noMove, "Not to be moved to another index");
  command.add_flag("--no-remove", options.noRemove, "Not to be removed");
  if (isIndex) command.add_flag("--no-rename", options.noRename, "Not to be renamed");
}

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PROTECTION_H_
