// The options that say what may not be done to an image or an index.
#ifndef CATALOGCORE_APP_PROTECTION_H_
#define CATALOGCORE_APP_PROTECTION_H_

#include <CLI/CLI.hpp>
#include <cstdint>

#include "app/index_tree.h"
#include "catalogcore.h"

namespace catalogcore::app {

inline constexpr std::uint8_t kAllProtections = IDXATTR_NOMOVE | IDXATTR_NOREMOVE | IDXATTR_NORENAME;

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

  // The attribute with the protections asked for added, or all taken away; an application's own bits stay.
  std::uint8_t Applied(std::uint8_t attribute) const {
    if (none) attribute &= static_cast<std::uint8_t>(~kAllProtections);
    if (noMove) attribute |= IDXATTR_NOMOVE;
    if (noRemove) attribute |= IDXATTR_NOREMOVE;
    if (noRename) attribute |= IDXATTR_NORENAME;
    return attribute;
  }
};

// Only indexes have a name to protect.
inline void AddProtection(CLI::App& command, ProtectionOptions& options, bool isIndex) {
  command.add_flag("--no-move", options.noMove, "Not to be moved to another index");
  command.add_flag("--no-remove", options.noRemove, "Not to be removed");
  if (isIndex) command.add_flag("--no-rename", options.noRename, "Not to be renamed");
}

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PROTECTION_H_
