// The commands, each added to the command line with its options, its help and what it does.
#ifndef CATALOGCORE_APP_COMMANDS_COMMANDS_H_
#define CATALOGCORE_APP_COMMANDS_COMMANDS_H_

#include <CLI/CLI.hpp>

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

// The option --jobs: threads to work with, as many as there are cores if it is not given.
void AddJobs(CLI::App& command, unsigned& jobs);

// What is wrong with a command line that `app` failed to parse, and where to read on.
std::string WrongUse(const CLI::App& app, const CLI::ParseError& error);

// The options --jobs, --memory and --time-limit.
void AddPictureLimits(CLI::App& command, PictureLimits& limits);

// Of the help: what is refused whatever the options say.
std::string TellPictureLimits();

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_COMMANDS_COMMANDS_H_
