#include "tools/tool_main.h"

#include <vips/vips.h>

#include <cstdio>
#include <exception>

namespace catalogcore::tools {

int RunTool(CLI::App& app, int argc, char** argv, const std::function<void()>& work) {
  CLI11_PARSE(app, argc, argv);
  if (VIPS_INIT(argv[0]) != 0) {
    std::fprintf(stderr, "%s: libvips does not start: %s\n", argv[0], vips_error_buffer());
    return 1;
  }
  vips_concurrency_set(1);
  int status = 1;
  try {
    work();
    status = 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s: %s\n", argv[0], failure.what());
  } catch (...) {
    std::fprintf(stderr, "%s: failed\n", argv[0]);
  }
  vips_shutdown();
  return status;
}

}  // namespace catalogcore::tools
