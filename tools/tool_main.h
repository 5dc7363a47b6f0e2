// Parts that the main functions of the tools share.
#ifndef CATALOGCORE_TOOLS_TOOL_MAIN_H_
#define CATALOGCORE_TOOLS_TOOL_MAIN_H_

#include <vips/vips.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

namespace catalogcore::tools {

// The first arguments of every tool: two folders of labelled pictures.
inline void AddPictureFolders(CLI::App& app, std::string& documents, std::string& photographs) {
  app.add_option("DOCUMENTS", documents, "folder of documents")->required()->check(CLI::ExistingDirectory);
  app.add_option("PHOTOS", photographs, "folder of photographs")->required()->check(CLI::ExistingDirectory);
}

// Declares the arguments with `addOptions(app)`, parses them, starts libvips with one thread (the tools process several
// pictures at once) and runs `work()`. Returns the exit status. Prints what an exception says and then returns 1.
template <typename AddOptions, typename Work>
int RunTool(int argc, char** argv, const char* description, AddOptions addOptions, Work work) noexcept {
  try {
    CLI::App app(description);
    addOptions(app);
    CLI11_PARSE(app, argc, argv);
    if (VIPS_INIT(argv[0]) != 0) throw std::runtime_error(std::string("cannot start libvips: ") + vips_error_buffer());
    vips_concurrency_set(1);
    work();
    vips_shutdown();
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s: %s\n", argv[0], failure.what());
  } catch (...) {
    std::fprintf(stderr, "%s: failed with an unknown exception\n", argv[0]);
  }
  return 1;
}

}  // namespace catalogcore::tools

#endif  // CATALOGCORE_TOOLS_TOOL_MAIN_H_
