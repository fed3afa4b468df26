#pragma once
// Where a long piece of work reports: a line of status text, and the points at
// which it lets the window's events run so that the user can stop it.
#include <functional>
#include <string_view>

namespace vonel {

class Progress {
 public:
  virtual ~Progress() = default;
  virtual void status(std::string_view text) = 0;
  virtual void letEventsRun() = 0;
};

// Asked at fixed counts during long work, where the work lets the window run;
// false stops the work there.
using KeepGoing = std::function<bool()>;

// For work nobody watches.
class SilentProgress final : public Progress {
 public:
  void status(std::string_view) override {}
  void letEventsRun() override {}
};

}  // namespace vonel
