#pragma once
// The message list of the mail window with its two filter boxes: it lists a
// folder from its cache (filling the cache first when it must), keeps the
// window live while it does, and stops a listing when another is asked for.
#include <QElapsedTimer>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QWidget>
#include <filesystem>
#include <optional>

#include "core/context/app_context.h"
#include "core/interaction/progress.h"
#include "core/store/folder_caches.h"
#include "core/store/store_lister.h"
#include "core/store/tag_files.h"
#include "ui/mailer/message_list_model.h"
#include "ui/mailer/message_list_view.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QTreeView;

namespace vonel {

class MessageListPane final : public QWidget, private store::StoreListerListener, private Progress {
  Q_OBJECT

 public:
  explicit MessageListPane(AppContext& context, QWidget* parent = nullptr);
  ~MessageListPane() override;

  store::FolderCaches& caches() { return caches_; }
  MessageListModel& model() { return model_; }
  MessageListView& view() { return *view_; }
  const std::filesystem::path& folder() const { return folder_; }

  // Lists the folder; a listing under way stops first.
  void showFolder(const std::filesystem::path& folder, const QString& name);
  // The same folder again, with the filters as they are now.
  void relist();
  // Reads the folder's files against its cache, then lists it; nothing while a listing runs.
  void rescanFolder();
  // Rebuilds every cache from the files, then lists the folder again.
  void rescanAll();
  // Stops a listing or a cache fill under way at its next yield.
  void stopPopulating();
  bool populating() const { return working_; }
  // How many message files the listings so far have opened (searches, and all with the cache off).
  std::size_t headersRead() const { return lister_.headersRead(); }

  // The folder's show filter, one step on: all, unread only, high-priority only.
  void cycleShowFilter();
  store::ShowFilter showFilter() const { return showFilter_; }

  QStringList selectedFiles() const;
  QString currentFile() const;

 signals:
  void previewRequested(const QString& file);
  void openRequested(const QString& file);
  void clearPreview();
  void countText(const QString& text);
  // "n messages" when a listing starts.
  void folderMessageCount(const QString& text);
  // The advice to archive for a large folder, or empty.
  void folderCountHint(const QString& text);
  void progressText(const QString& text);
  void showFilterChanged(store::ShowFilter filter);
  void unreadCompared(int boldRows);
  void someUnread();
  void noUnread();
  void finished();

 private:
  enum class Work { List, RescanFolder, RescanAll };
  struct Request {
    Work work = Work::List;
    std::filesystem::path folder;
    QString name;
  };

  void ask(Request request);
  void runRequests();
  void populate(const Request& request);
  void fillCacheOf(const Request& request);
  bool filtersOff() const;
  QString folderKey() const;
  void yieldNow();
  bool outboxShown() const;
  void selectAndPreviewLastRow();
  void chooseRow(int row);
  void rebuildTagsCombo();
  QString displayCount() const;
  void onFilterTimer();

  // The population's events.
  void onClearMessages() override;
  void onFolderMessageCount(long count) override;
  void addMessage(message::Message& message, long counter, long total) override;
  void onSomeUnreadMessages() override;
  void onNoUnreadMessages() override;
  void onFinishedAddingMessages(long unreadCount, long mostRecentUnread) override;
  void setBusy(bool busy) override;
  // Both the population and a cache fill yield here.
  void letEventsRun() override;
  void status(std::string_view text) override;

  AppContext& context_;
  store::FolderCaches caches_;
  store::StoreLister lister_;
  MessageListModel model_;
  MessageListModel backupModel_;
  QLineEdit* search_;
  QComboBox* tags_;
  QLabel* status_;
  MessageListView* view_;
  QTreeView* backup_;
  QTimer* searchTimer_;
  QTimer* tagsTimer_;
  QElapsedTimer sinceYield_;

  std::filesystem::path folder_;
  QString folderName_;
  store::ShowFilter showFilter_ = store::ShowFilter::All;
  store::ListFilter filter_;
  // The cache a listing reads by position; null while a search or with the cache off.
  store::FolderCache* listedCache_ = nullptr;
  // The cache a search looks its files up in.
  store::FolderCache* searchedCache_ = nullptr;
  std::optional<Request> pending_;
  bool working_ = false;
  bool busyCursor_ = false;
  bool closing_ = false;
  // The row last chosen in each folder, by lower-case file name.
  QHash<QString, QString> lastChosen_;
};

}  // namespace vonel
