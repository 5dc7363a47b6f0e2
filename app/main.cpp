// The command catalogcore.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <filesystem>

#include "app/commands/commands.h"
#include "app/picture_worker.h"

namespace catalogcore::app {

namespace {

void DescribeCommandLine(CLI::App& app, Session& session) {
  session.catalogFolder = DefaultCatalogFolder();
  app.set_version_flag("--version", "catalogcore " CATALOGCORE_VERSION);
  app.add_option("--catalog", session.catalogFolder,
                 "Folder of the catalogue; default: $XDG_DATA_HOME/catalogcore, or else ~/.local/share/catalogcore")
      ->type_name("DIR");
  app.add_flag("--wait", session.waits, "Wait while another command changes the catalogue, instead of failing");
  app.require_subcommand(1);
  app.fallthrough();
  AddSort(app, session);
  AddClassify(app, session);
  AddList(app, session);
  AddTree(app, session);
  AddIndexCommands(app, session);
  AddImageCommands(app, session);
  AddCheck(app, session);
  AddGallery(app, session);
  AddExport(app, session);
  AddHelp(app);
  app.footer(
      "Exit status: 0 success, 1 some files were skipped, 2 wrong use, 3 the catalogue could not be read or "
      "written,\n130 stopped by Ctrl-C.\n\n"
      "Examples:\n"
      "  catalogcore sort ~/Pictures        classify every picture and file it\n"
      "  catalogcore tree                   show the indexes and their number of images\n"
      "  catalogcore gallery ~/gallery      make a page for the browser\n\n"
      "`catalogcore help COMMAND` or `catalogcore COMMAND --help` describes a command.");
}

// In a process that was started without standard output, the next file that is opened would become standard output. This
// opens /dev/null in its place, so that writing fails and is reported.
void OccupyStandardDescriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) != -1) continue;
    if (open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY) < 0) return;
  }
}

int Run(int argc, char** argv, Session& session) {
  CLI::App app("Files pictures by content: documents by paper size, photographs by whether they show faces.",
               "catalogcore");
  DescribeCommandLine(app, session);
  app.parse_complete_callback([&app, &session] {
    if (app.got_subcommand("help")) return;
    if (session.catalogFolder.empty())
      throw UsageError("$HOME is not set; name the folder of the catalogue with --catalog");
    session.catalogFolder = std::filesystem::absolute(session.catalogFolder).string();
  });
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) throw UsageError(WrongUse(app, error));
    app.exit(error);  // prints the help or the version
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    session.progress.Say("cannot write to standard output");
    return session.status == kDone ? kSomeSkipped : session.status;
  }
  return session.status;
}

}  // namespace
}  // namespace catalogcore::app

int main(int argc, char** argv) {
  using catalogcore::app::Session;
  if (catalogcore::app::IsPictureWorker(argc, argv)) return catalogcore::app::RunPictureWorker(argv);
  catalogcore::app::OccupyStandardDescriptors();
  Session session;
  try {
    return catalogcore::app::Run(argc, argv, session);
  } catch (const catalogcore::app::UsageError& error) {
    session.progress.Say(error.what());
    return catalogcore::app::kWrongUse;
  } catch (const std::bad_alloc&) {
    session.progress.Say("out of memory");
  } catch (const std::exception& error) {
    session.progress.Say(error.what());
  }
  return catalogcore::app::kCatalogFailed;
}
