#include "ui/scanner/scanner_toolbar.h"

#include <QToolButton>

namespace vonel {

ScannerToolbar::ScannerToolbar(QWidget* parent) : CommandToolbar("upanddown", parent) {
  addButton("sendrcvdel", "sendrcvdel", "Download and Delete Spam", kCleanTip);
  addButton("cms", "cms", "Tickets", "Open the ticket list");
  addButton("brd", "brd", "Reminders", "Show the reminders");
  addButton("newmail", "newmail", "New Mail", "Write a new message");
  addButton("upanddown", "sendreceive", "Send/Receive", kSendReceiveTip);
  addButton("mailer", "mailer", "Mailer", "Switch to the mailer window");
  addButton("scan", "scan", "Scan", "Check the servers for waiting mail without downloading it");
  addButton("delete", "delete", "Scan and Delete", "Check the servers and delete the spam there");
  addButton("filters", "filters", "Filters", "Open the Bayes filter");
  addButton("settings", "settings", "Settings", "Change the settings");
  addButton("help", "help", "Help", "Help and error reports");
  addButton("stop", "stop", "Stop", kStopTip);
  addButton("close", "close", "Close", "Hide this window; Vonel goes on running in the tray");
  addButton("contacts", "contacts", "Contacts", "Open the contacts");

  for (const char* key : {"sendrcvdel", "scan", "delete"}) addMenu(key);
  addSendReceiveMenu("upanddown");
  addMenu("close");
  addFixedEntry("close", "quit", "Quit");
  addMenu("filters");
  addFixedEntry("filters", "localfilters", "Local Filters");
  addFixedEntry("filters", "serverfilters", "Server Filters");
  addFixedEntry("filters", "reinforce", "Reinforce from the List");
  addMenu("settings");
  addFixedEntry("settings", "checkupdate", "Check for Update");

  // There is no reminder component on this system.
  setButtonVisible("brd", false);
  showTicketButton(false);
  showPassRunning(false);
}

void ScannerToolbar::setupAccountMenus(const std::vector<AccountMenuEntry>& accounts) {
  for (const char* key : {"scan", "delete", "sendrcvdel", "upanddown"}) clearAccountEntries(key);
  addAccountEntries("scan", accounts, {"Account", "Scan: "});
  addAccountEntries("delete", accounts, {"Account", "Scan and Delete: "});
  addAccountEntries("sendrcvdel", accounts, {"Account", "Download Mail and Delete Spam: "});
  addAccountEntries("upanddown", accounts, {"DLM", "Download Mail from "}, true);
  addAccountEntries("delete", accounts, {"DELALL", "Delete ALL from: "}, true);
}

void ScannerToolbar::showTicketButton(bool show) { setButtonVisible("cms", show); }

void ScannerToolbar::showPassRunning(bool running) {
  setButtonLook("upanddown", running ? "stop" : "sendreceive", running ? kStopTip : kSendReceiveTip);
  button("stop")->setEnabled(running);
}

}  // namespace vonel
