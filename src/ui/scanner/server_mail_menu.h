#pragma once
// The list's context menu: what can be done with the message under the
// mouse, and with the selected rows. Its captions follow the message.
#include <QMenu>
#include <array>

namespace vonel {

enum class ServerMailCommand {
  BlockSender,
  BlockRecipient,
  BlockSenderDomain,
  BlockRecipientDomain,
  IgnoreRecipient,
  MarkJunk,
  CreateFilter,
  EditFilter,
  ReadMessage,
  ViewSource,
  Download,
  Bounce,
};

// What the menu needs to know of the message it is opened on.
struct ServerMailMenuState {
  QString messageNumber;  // on its server
  QString server;
  QString filterReason;
  bool readOnServerDisabled = false;
  bool senderBlocked = false;
  bool recipientBlocked = false;
  bool senderDomainBlocked = false;
  bool recipientDomainBlocked = false;
  bool recipientIgnored = false;
};

class ServerMailMenu final : public QMenu {
  Q_OBJECT

 public:
  explicit ServerMailMenu(QWidget* parent);

  // Sets captions and what is shown for the message.
  void prepare(const ServerMailMenuState& state);
  // A command whose window or feature is missing stays disabled.
  void setAvailable(ServerMailCommand command, bool available);
  QAction* action(ServerMailCommand command) const;

 signals:
  // `undo`: the entry undoes a block or an ignore that is in force.
  void chosen(ServerMailCommand command, bool undo);

 private:
  QAction* add(ServerMailCommand command, const char* objectName, const QString& caption);

  std::array<QAction*, 12> actions_{};
  std::array<bool, 12> available_{};
  std::array<bool, 12> undo_{};
};

}  // namespace vonel
