#include "app/console_prompt.h"

#include <cstdio>
#include <string>

#include "app/status_line.h"
#include "core/text/cp1252.h"

namespace vonel {
namespace {

const char* answerWord(Answer answer) {
  switch (answer) {
    case Answer::Ok: return "OK";
    case Answer::Cancel: return "Cancel";
    case Answer::Yes: return "Yes";
    case Answer::No: return "No";
    case Answer::Retry: return "Retry";
  }
  return "";
}

}  // namespace

// One line a box. Nobody can click here, so the lines of a Retry/Cancel box
// that tell which button to click are left out.
Answer ConsolePrompt::ask(std::string_view text, Buttons buttons, std::string_view title) {
  const Answer answer = ScriptedPrompt::ask(text, buttons, title);
  const std::string_view shown = buttons == Buttons::RetryCancel ? text.substr(0, text.find_first_of("\r\n")) : text;
  std::fprintf(stderr, "vonel: %s [%s]\n", blanksForBreaks(text::cp1252ToUtf8(shown)).c_str(), answerWord(answer));
  return answer;
}

void ConsolePrompt::showError(std::string_view text, std::string_view details) {
  ScriptedPrompt::showError(text, details);
  std::fprintf(stderr, "vonel: error: %s\n", text::cp1252ToUtf8(text).c_str());
}

}  // namespace vonel
