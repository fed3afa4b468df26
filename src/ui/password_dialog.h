#pragma once
// Asks for a missing password in a small dialog.
#include "core/settings/accounts.h"

class QWidget;

namespace vonel {

class PasswordDialog final : public PasswordPrompt {
 public:
  explicit PasswordDialog(QWidget* parent = nullptr) : parent_(parent) {}
  std::string askPassword(std::string_view title, std::string_view prompt, bool& cancelled, bool& save) override;

 private:
  QWidget* parent_;
};

}  // namespace vonel
