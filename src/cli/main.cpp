#include <QCoreApplication>
#include <iostream>
#include <memory>

#include "cli/cli.h"
#include "plot/graph_export.h"

int main(int argc, char* argv[]) {
  std::vector<std::string> args(argv + 1, argv + argc);
  // The serial and TCP transports are Qt objects; they need an application object, not a loop.
  // plot alone draws, with Qt's graphics on the offscreen platform: no display needed.
  const std::unique_ptr<QCoreApplication> app =
      talvex::cli::DrawsGraph(args) ? talvex::plot::MakeDrawingApplication(argc, argv)
                                    : std::make_unique<QCoreApplication>(argc, argv);
  return talvex::cli::RunCli(args, std::cout, std::cerr);
}
