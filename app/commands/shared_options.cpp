// Options that several commands share: the limits of decoding pictures, and protections.
#include <thread>

#include "app/commands/commands.h"
#include "app/picture.h"
#include "app/text.h"

namespace catalogcore::app {

void AddPictureLimits(CLI::App& command, PictureLimits& limits) {
  limits.jobs = std::max(std::thread::hardware_concurrency(), 1U);
  command.add_option("--jobs", limits.jobs, "Number of pictures to process in parallel; default: the number of cores")
      ->type_name("N")
      ->check(CLI::Range(1U, 256U));
  limits.megabytes = DefaultMegabytes();
  command
      .add_option("--memory", limits.megabytes,
                  "Memory for decoding pictures, shared by the jobs; default: half of the machine's, at most 4096")
      ->type_name("MB")
      ->check(CLI::Range(kLeastMegabytes, 1U << 20));
  command.add_option("--time-limit", limits.seconds, "Time for decoding one picture; default: 60")
      ->type_name("SECONDS")
      ->check(CLI::Range(1U, 86400U));
}

std::string FixedPictureLimits() {
  return "A picture that needs more memory or time is skipped. So is a picture with more than " +
         std::to_string(kMostSamplesPerPixel) +
         " samples a pixel,\nwith samples of 64 bits or complex numbers, of more than " +
         Grouped(kMostDecodedMegabytes) + " MB decoded at full size (" + Grouped(kMostHeldMegabytes) +
         " MB\nfor WebP, HEIF, interlaced PNG and JPEG in several passes), or with more than " +
         std::to_string(kMostPasses) + " passes.";
}

void ProtectionOptions::RequireAny() const {
  if (noMove || noRemove || noRename || none) return;
  throw UsageError("no protection given; choose one (see --help), or --none");
}

Attributes ProtectionOptions::Applied(Attributes attributes) const {
  if (none) attributes &= ~kAllProtections;
  if (noMove) attributes |= Attributes::kNoMove;
  if (noRemove) attributes |= Attributes::kNoRemove;
  if (noRename) attributes |= Attributes::kNoRename;
  return attributes;
}

void AddProtection(CLI::App& command, ProtectionOptions& options, bool isIndex) {
  command.add_flag("--no-move", options.noMove, "Protect from being moved to another index");
  command.add_flag("--no-remove", options.noRemove, "Protect from removal");
  if (isIndex) command.add_flag("--no-rename", options.noRename, "Protect from being renamed");
}

}  // namespace catalogcore::app
