#pragma once
// What one pass over the servers is asked to do.
#include <optional>

namespace vonel {

// What a pass does on each server.
enum class PassKind {
  Scan,       // judges the headers and lists them
  Download,   // stores what passes the rules
  DeleteAll,  // erases every message, good and bad
};

struct PassRequest {
  PassKind kind = PassKind::Scan;
  // Deletes on the server what the rules and the filter fail.
  bool deleteSpam = false;
  // The one account of the pass, polled even when it isn't checked; every account when empty.
  std::optional<int> account;
};

}  // namespace vonel
