// What a picture may cost, as options and in the help.
#include "app/commands/commands.h"
#include "app/picture.h"
#include "app/text.h"

namespace catalogcore::app {

void AddPictureLimits(CLI::App& command, PictureLimits& limits) {
  AddJobs(command, limits.jobs);
  limits.megabytes = DefaultMegabytes();
  command
      .add_option(
          "--memory", limits.megabytes,
          "Memory for decoding pictures, shared by the jobs; 4096, or half of the machine's where that is less, if "
          "not given")
      ->type_name("MB")
      ->check(CLI::Range(kLeastMegabytes, 1U << 20));
  command.add_option("--time-limit", limits.seconds, "Time for decoding one picture; 60 if not given")
      ->type_name("SECONDS")
      ->check(CLI::Range(1U, 86400U));
}

std::string TellPictureLimits() {
  return "A picture that takes more memory or time to decode is skipped. So is one with more than " +
         std::to_string(kMostSamplesPerPixel) +
         " samples a\npixel, with samples of 64 bits or complex numbers, of more than " +
         Grouped(kMostDecodedMegabytes) + " MB decoded at full size (" + Grouped(kMostHeldMegabytes) +
         " MB\nif it is WebP, HEIF, interlaced PNG or JPEG in several passes), or with more than " +
         std::to_string(kMostPasses) + " passes.";
}

}  // namespace catalogcore::app
