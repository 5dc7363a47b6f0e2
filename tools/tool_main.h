// What the main functions of the tools have in common.
#ifndef CATALOGCORE_TOOLS_TOOL_MAIN_H_
#define CATALOGCORE_TOOLS_TOOL_MAIN_H_

#include <CLI/CLI.hpp>
#include <functional>

namespace catalogcore::tools {

// Parses the arguments with `app`, starts libvips with one thread (pictures, not parts of one, are worked on side by
// side) and runs `work`. Returns the exit status; what `work` throws is printed, and the status is 1.
int RunTool(CLI::App& app, int argc, char** argv, const std::function<void()>& work);

}  // namespace catalogcore::tools

#endif  // CATALOGCORE_TOOLS_TOOL_MAIN_H_
