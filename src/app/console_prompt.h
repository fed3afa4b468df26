#pragma once
// Questions asked where nobody can click: each is written to the error
// stream with the answer taken, which is the cautious default of its buttons.
#include "core/interaction/prompt.h"

namespace vonel {

class ConsolePrompt final : public ScriptedPrompt {
 public:
  Answer ask(std::string_view text, Buttons buttons, std::string_view title) override;
  void showError(std::string_view text, std::string_view details) override;
};

}  // namespace vonel
