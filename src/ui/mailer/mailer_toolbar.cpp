#include "ui/mailer/mailer_toolbar.h"

namespace vonel {

MailerToolbar::MailerToolbar(QWidget* parent) : CommandToolbar("upanddown", parent) {
  addButton("help", "help", "Help", "Help and error reports");
  addButton("scanner", "scanner", "Scanner", "Switch to the scanner window");
  addButton("print", "print", "Print", "Print the selected messages");
  addButton("brd", "brd", "Reminders", "Show the reminders");
  addButton("newemail", "newmail", "New Mail", "Write a new message");
  addButton("unread", "readandunread", "Unread Filter", "Show all mail, unread mail only, or high-priority unread mail only");
  addButton("settings", "settings", "Settings", "Change the settings");
  addButton("upanddown", "sendreceive", "Send/Receive", kSendReceiveTip);
  addButton("sendrcvdel", "sendrcvdel", "Download and Delete Spam", kCleanTip);
  addButton("forward", "forward", "Forward", "Forward the selected message");
  addButton("reply", "reply", "Reply", "Reply to the selected message");
  addButton("filters", "filters", "Filters", "Apply or edit the filters");
  addButton("contacts", "contacts", "Contacts", "Open the contacts");
  addButton("close", "close", "Close", "Hide this window; Vonel goes on running in the tray");

  addMenu("settings");
  addFixedEntry("settings", "selfromclipboard", "Select from Clipboard");
  addFixedEntry("settings", "seldupes", "Select Duplicates");
  addFixedEntry("settings", "archive", "Archive old mail");
  addFixedEntry("settings", "importmail", "Import Mail");
  addFixedEntry("settings", "newfolder", "New Folder");
  addFixedEntry("settings", "rescanfolders", "Rescan Folders");
  addFixedEntry("settings", "mailmerge", "Mail Merge");
  addMenu("filters");
  addFixedEntry("filters", "applylocal", "Apply Local Filters");
  addFixedEntry("filters", "editlocal", "Edit Local Filters");
  addFixedEntry("filters", "editserver", "Edit Server Filters");
  addMenu("close");
  addFixedEntry("close", "quit", "Quit");
  addSendReceiveMenu("upanddown");
  addMenu("sendrcvdel");

  // There is no reminder component on this system.
  setButtonVisible("brd", false);
  showMailMoving(false);
}

void MailerToolbar::setupAccountMenus(const std::vector<AccountMenuEntry>& accounts) {
  for (const char* key : {"upanddown", "sendrcvdel"}) clearAccountEntries(key);
  addAccountEntries("upanddown", accounts, {"DLM", "Download Mail from "}, true);
  addAccountEntries("sendrcvdel", accounts, {"Account", "Download Mail and Delete Spam: "});
}

void MailerToolbar::showMailMoving(bool moving) {
  setButtonLook("upanddown", moving ? "stop" : "sendreceive", moving ? kStopTip : kSendReceiveTip);
  setButtonLook("sendrcvdel", moving ? "stop" : "sendrcvdel", moving ? kStopTip : kCleanTip);
}

void MailerToolbar::showFolderFilter(store::ShowFilter filter) {
  switch (filter) {
    case store::ShowFilter::UnreadOnly: setButtonLook("unread", "unread", "Showing unread mail only"); break;
    case store::ShowFilter::UnreadHighOnly:
      setButtonLook("unread", "unreadhigh", "Showing high-priority unread mail only");
      break;
    case store::ShowFilter::All: setButtonLook("unread", "readandunread", "Showing all mail"); break;
  }
}

}  // namespace vonel
