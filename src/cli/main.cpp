#include <QCoreApplication>
#include <iostream>

#include "cli/cli.h"

int main(int argc, char* argv[]) {
  // The serial and TCP transports are Qt objects; they need an application object, not a loop.
  QCoreApplication app(argc, argv);
  std::vector<std::string> args(argv + 1, argv + argc);
  return talvex::cli::RunCli(args, std::cout, std::cerr);
}
