// soak: the long soak run (make soak). Runs the scenario round after round on the test clock and
// prints the figures; exits 0 when the UI held up, 1 when it did not, 2 for bad arguments.
//
//   soak [--rounds N] [--log FILE] [scenario]
#include <cstdio>
#include <cstdlib>
#include <string>

#include "soak_session.h"

int main(int argc, char** argv) {
  SoakOptions options;
  options.scenario = SOAK_SCENARIO;
  options.rounds = 10;
  options.progress = true;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--rounds" && i + 1 < argc) {
      options.rounds = std::atoi(argv[++i]);
      if (options.rounds < 1) {
        std::fprintf(stderr, "soak: --rounds takes a positive number\n");
        return 2;
      }
    } else if (arg == "--log" && i + 1 < argc) {
      options.log_path = argv[++i];
    } else if (!arg.empty() && arg[0] != '-') {
      options.scenario = arg;
    } else {
      std::fprintf(stderr, "usage: soak [--rounds N] [--log FILE] [scenario]\n");
      return 2;
    }
  }
  const SoakFigures figures = soak_run(options);
  std::printf("%s", soak_report(figures).c_str());
  return figures.passed ? 0 : 1;
}
