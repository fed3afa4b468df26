#include <iostream>

#include "inspect/command.h"

namespace vonel::inspect {

namespace {
std::vector<Command>& registry() {
  static std::vector<Command> all;
  return all;
}
}  // namespace

bool registerCommand(Command command) {
  registry().push_back(std::move(command));
  return true;
}

const std::vector<Command>& commands() { return registry(); }

}  // namespace vonel::inspect

int main(int argc, char** argv) {
  using namespace vonel::inspect;
  const std::string name = argc > 1 ? argv[1] : "";
  for (const auto& command : commands()) {
    if (command.name == name) return command.run(Arguments(argv + 2, argv + argc), std::cout, std::cerr);
  }
  std::cerr << "usage: vonel-inspect COMMAND ARGS...\n";
  for (const auto& command : commands()) std::cerr << "  vonel-inspect " << command.name << " " << command.usage << "\n";
  return 2;
}
