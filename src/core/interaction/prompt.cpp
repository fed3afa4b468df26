#include "core/interaction/prompt.h"

namespace vonel {

Answer ScriptedPrompt::ask(std::string_view text, Buttons buttons, std::string_view) {
  lastQuestion = text;
  ++questions;
  if (!queued_.empty()) {
    const auto answer = static_cast<Answer>(queued_.front());
    queued_.erase(0, 1);
    return answer;
  }
  switch (buttons) {
    case Buttons::RetryCancel:
    case Buttons::OkCancel:
      return Answer::Cancel;
    case Buttons::YesNo:
    case Buttons::YesNoCancel:
      return Answer::Yes;
    case Buttons::Ok:
      break;
  }
  return Answer::Ok;
}

void ScriptedPrompt::showError(std::string_view text, std::string_view details) {
  lastError = std::string(text);
  if (details.empty()) return;
  lastError += '\n';
  lastError += details;
}

}  // namespace vonel
