#pragma once
// The modal questions and boxes of the program. Logic asks through this
// interface; the windows answer with real dialogs, tests and headless runs
// with prepared answers.
#include <string>
#include <string_view>

namespace vonel {

enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel, RetryCancel };
enum class Answer { Ok, Cancel, Yes, No, Retry };

class Prompt {
 public:
  virtual ~Prompt() = default;
  // A plain box with the given buttons; returns the button chosen.
  virtual Answer ask(std::string_view text, Buttons buttons, std::string_view title) = 0;
  // The error report window: a text and its details.
  virtual void showError(std::string_view text, std::string_view details) = 0;
};

// Answers every question with a fixed choice and remembers what was asked;
// used where no person is present.
class ScriptedPrompt : public Prompt {
 public:
  Answer ask(std::string_view text, Buttons buttons, std::string_view title) override;
  void showError(std::string_view text, std::string_view details) override;

  // The answer to give next; when none is queued, the safe default of the
  // buttons (OK, Cancel for Retry/Cancel, Yes for Yes/No).
  void queue(Answer answer) { queued_ += static_cast<char>(answer); }

  std::string lastQuestion;
  std::string lastError;
  int questions = 0;

 private:
  std::string queued_;
};

}  // namespace vonel
