#pragma once
// Sub-commands of vonel-inspect register themselves by name; each lives in
// its own file and is reached as `vonel-inspect NAME ARGS...`.
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace vonel::inspect {

using Arguments = std::vector<std::string>;
// Returns the process exit code; writes its report to `out`, complaints to `err`.
using Handler = std::function<int(const Arguments& args, std::ostream& out, std::ostream& err)>;

struct Command {
  std::string name;
  std::string usage;
  Handler run;
};

// Call from a static object in the command's file.
bool registerCommand(Command command);
const std::vector<Command>& commands();

}  // namespace vonel::inspect
