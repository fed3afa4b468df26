#include "ui/scanner/server_mail_menu.h"

namespace vonel {
namespace {

std::size_t slot(ServerMailCommand command) { return static_cast<std::size_t>(command); }

QString blockCaption(bool blocked, const QString& what) { return (blocked ? "Unblock " : "Block ") + what; }

}  // namespace

ServerMailMenu::ServerMailMenu(QWidget* parent) : QMenu(parent) {
  setObjectName("mnuRightClick");
  available_.fill(true);
  add(ServerMailCommand::BlockSender, "mnublockSender", "Block Sender");
  add(ServerMailCommand::BlockSenderDomain, "mnublockSenderDomain", "Block Sender's Domain");
  add(ServerMailCommand::BlockRecipient, "mnuBlockRecip", "Block Recipient");
  add(ServerMailCommand::BlockRecipientDomain, "mnuBlockRecipDomain", "Block Recipient's Domain");
  add(ServerMailCommand::IgnoreRecipient, "mnuIgnoreRecipient", "Ignore Recipient");
  addSeparator();
  add(ServerMailCommand::MarkJunk, "mnuMarkJunk", "Mark as Junk");
  add(ServerMailCommand::CreateFilter, "mnuCreateFilter", "Create Filter from Message");
  add(ServerMailCommand::EditFilter, "mnuEditThisFilter", "Edit Filter");
  addSeparator();
  add(ServerMailCommand::ReadMessage, "mnuReadMessage", "Read Message");
  add(ServerMailCommand::ViewSource, "mnuViewMsgSource", "View Message Source");
  add(ServerMailCommand::Download, "mnuDownloadSelectedMessage", "Download Message");
  add(ServerMailCommand::Bounce, "mnuBounce", "Bounce Message");
}

QAction* ServerMailMenu::add(ServerMailCommand command, const char* objectName, const QString& caption) {
  QAction* action = addAction(caption);
  action->setObjectName(objectName);
  connect(action, &QAction::triggered, this, [this, command] { emit chosen(command, undo_[slot(command)]); });
  actions_[slot(command)] = action;
  return action;
}

QAction* ServerMailMenu::action(ServerMailCommand command) const { return actions_[slot(command)]; }

void ServerMailMenu::setAvailable(ServerMailCommand command, bool available) {
  available_[slot(command)] = available;
  action(command)->setEnabled(available);
}

void ServerMailMenu::prepare(const ServerMailMenuState& state) {
  const auto caption = [this](ServerMailCommand command, bool undo, const QString& text) {
    undo_[slot(command)] = undo;
    action(command)->setText(text);
  };
  caption(ServerMailCommand::BlockSender, state.senderBlocked, blockCaption(state.senderBlocked, "Sender"));
  caption(ServerMailCommand::BlockSenderDomain, state.senderDomainBlocked,
          blockCaption(state.senderDomainBlocked, "Sender's Domain"));
  caption(ServerMailCommand::BlockRecipient, state.recipientBlocked, blockCaption(state.recipientBlocked, "Recipient"));
  caption(ServerMailCommand::BlockRecipientDomain, state.recipientDomainBlocked,
          blockCaption(state.recipientDomainBlocked, "Recipient's Domain"));
  caption(ServerMailCommand::IgnoreRecipient, state.recipientIgnored,
          state.recipientIgnored ? "Stop Ignoring Recipient" : "Ignore Recipient");

  action(ServerMailCommand::ReadMessage)
      ->setText("Read Message " + state.messageNumber + " on " + state.server);
  action(ServerMailCommand::ViewSource)->setText("View Message " + state.messageNumber + " Source");
  for (ServerMailCommand command : {ServerMailCommand::ReadMessage, ServerMailCommand::ViewSource}) {
    action(command)->setEnabled(available_[slot(command)] && !state.readOnServerDisabled);
  }
  // A rule's name can be edited; the word filter's verdict ("Bayes: 0.93")
  // has no rule behind it.
  QAction* edit = action(ServerMailCommand::EditFilter);
  const bool namesRule = !state.filterReason.isEmpty() && !state.filterReason.startsWith("Bayes");
  edit->setVisible(namesRule);
  edit->setText("Edit Filter '" + state.filterReason + "'");
}

}  // namespace vonel
