#pragma once
// The scanner window's toolbar: its buttons, and the drop-down menus that
// offer the commands per account.
#include <vector>

#include "ui/command_toolbar.h"

namespace vonel {

class ScannerToolbar final : public CommandToolbar {
  Q_OBJECT

 public:
  explicit ScannerToolbar(QWidget* parent = nullptr);

  // Replaces the per-account entries of the drop-down menus; the fixed
  // entries stay.
  void setupAccountMenus(const std::vector<AccountMenuEntry>& accounts);
  // The ticket list's button "cms" shows only in ticket mode.
  void showTicketButton(bool show);
  // While a pass runs "upanddown" shows the stop picture and "stop" is enabled.
  void showPassRunning(bool running);
};

}  // namespace vonel
