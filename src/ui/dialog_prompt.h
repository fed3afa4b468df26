#pragma once
// The program's questions and error reports as real dialogs.
#include "core/interaction/prompt.h"

class QWidget;

namespace vonel {

class AppContext;

class DialogPrompt final : public Prompt {
 public:
  explicit DialogPrompt(QWidget* parent = nullptr) : parent_(parent) {}
  void setParent(QWidget* parent) { parent_ = parent; }
  // The error report window shows the log, the settings' bug report address
  // and the program's facts; until the context is given, errors show in a
  // plain box.
  void setContext(AppContext* context) { context_ = context; }
  Answer ask(std::string_view text, Buttons buttons, std::string_view title) override;
  void showError(std::string_view text, std::string_view details) override;

 private:
  QWidget* parent_;
  AppContext* context_ = nullptr;
};

}  // namespace vonel
