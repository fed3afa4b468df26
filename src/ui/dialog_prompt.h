#pragma once
// The program's questions and error reports as real dialogs.
#include "core/interaction/prompt.h"

class QWidget;

namespace vonel {

class DialogPrompt final : public Prompt {
 public:
  explicit DialogPrompt(QWidget* parent = nullptr) : parent_(parent) {}
  void setParent(QWidget* parent) { parent_ = parent; }
  Answer ask(std::string_view text, Buttons buttons, std::string_view title) override;
  void showError(std::string_view text, std::string_view details) override;

 private:
  QWidget* parent_;
};

}  // namespace vonel
