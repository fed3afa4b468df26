#pragma once
// The mail window's toolbar: its buttons, the drop-down menus of settings,
// filters and close, and per account the download menus.
#include <vector>

#include "core/store/tag_files.h"
#include "ui/command_toolbar.h"

namespace vonel {

class MailerToolbar final : public CommandToolbar {
  Q_OBJECT

 public:
  explicit MailerToolbar(QWidget* parent = nullptr);

  void setupAccountMenus(const std::vector<AccountMenuEntry>& accounts);
  // While mail moves, send-and-receive and its deleting twin show "stop".
  void showMailMoving(bool moving);
  // The "unread" button shows which of the chosen folder's filters is on.
  void showFolderFilter(store::ShowFilter filter);
};

}  // namespace vonel
