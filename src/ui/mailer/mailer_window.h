#pragma once
// The mail window: the folder tree, the chosen folder's messages with the
// preview of one, the mail waiting on the servers, the toolbar and the status
// bar. It keeps no mail state: folders and counts come from the store lister
// and the tag files, messages from the folder caches. What it can't do itself
// it asks of the main program through its signals.
#include <QMainWindow>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

#include "app/account_menu_entries.h"
#include "core/context/app_context.h"
#include "core/store/received_mail.h"
#include "core/store/store_lister.h"
#include "ui/window_host.h"

class QLabel;
class QSplitter;
class QTreeView;
class QTreeWidgetItem;

namespace vonel {

class FolderTree;
class MailerToolbar;
class MessageListPane;
class MessagePreview;
class ServerMailModel;

class MailerWindow final : public QMainWindow, private store::StoreListerListener, public store::NewMessageSink {
  Q_OBJECT

 public:
  MailerWindow(AppContext& context, WindowHost& host, ServerMailModel& serverMail, QWidget* parent = nullptr);
  ~MailerWindow() override;

  // Geometry, column widths, then the window shown and the folders listed.
  void load();
  // Lists the folder tree again; `regenerate` first rewrites the folder lists.
  void populateFolders(bool regenerate);
  // Every folder's cache refilled, then the tree listed again.
  void rescanAllCaches();
  // The controls whose window or feature has arrived in the host.
  void refreshAvailability();
  void setupAccountMenus(const std::vector<AccountMenuEntry>& accounts);

  // What the main program tells the window.
  void showMailMoving(bool moving);
  void notifyFinishedGettingMail();
  void notifyFinishedSendingMail();
  void showProgressMessage(const QString& text);
  void hideForm();
  void unloadNowPlease();
  void addNewMessage(const std::filesystem::path& file, const std::filesystem::path& folder,
                     const message::Message& message) override;

  FolderTree& tree() { return *tree_; }
  MessageListPane& messageList() { return *list_; }
  MessagePreview& preview() { return *preview_; }
  MailerToolbar& toolbar() { return *toolbar_; }

 signals:
  void showScanner();
  void showSettings();
  void quitProgram();
  void scan();
  void scanAndDelete();
  void stopMail();
  void sendAndReceive();
  void sendReceiveAndDelete();
  void sendReceiveAndDeleteFrom(int account);
  void downloadFrom(int account);
  void uploadMail();
  void downloadMailNoUpload();
  void upDownWithClear();
  // A row of the server list opened.
  void readServerMessage(const QModelIndex& row);
  // The window was closed to the tray (or to nothing, where there is no tray).
  void hidden();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void onClearFolders() override;
  void onAddFolder(std::string_view name, std::string_view parentName, std::string_view diskPath) override;
  void onFinishedAddingFolders() override;
  void letEventsRun() override;

  QWidget* buildPanes();
  QWidget* buildServerList();
  void buildStatusBar();
  void buildKeys();
  void connectPanes();
  void onToolbarButton(const QString& key);
  void onToolbarMenuEntry(const QString& buttonKey, const QString& entryKey);
  void onNodeClicked(QTreeWidgetItem* node);
  void populateListView(QTreeWidgetItem* node);
  void newFolder();
  // The window's settings in twips, read at load and written when it closes.
  void readWindowSettings();
  void writeWindowSettings();
  void logStep(std::string_view text);

  AppContext& ctx_;
  WindowHost& host_;
  ServerMailModel& serverMail_;
  store::StoreLister folders_;
  MailerToolbar* toolbar_;
  FolderTree* tree_;
  QTreeView* serverList_;
  MessageListPane* list_;
  MessagePreview* preview_;
  QSplitter* columns_ = nullptr;   // tree and server list | messages and preview
  QSplitter* leftPanes_ = nullptr;
  QSplitter* rightPanes_ = nullptr;
  QLabel* countPanel_ = nullptr;
  QLabel* hintPanel_ = nullptr;
  QLabel* progressPanel_ = nullptr;
  std::optional<QString> chosenKey_;  // the folder shown last; the inbox at first
  bool inboxRescanned_ = false;
  bool mailMoving_ = false;
};

}  // namespace vonel
