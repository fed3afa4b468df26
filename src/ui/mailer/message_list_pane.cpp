#include "ui/mailer/message_list_pane.h"

#include <QApplication>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "app/qtext.h"
#include "core/log/log_places.h"
#include "core/text/strings.h"

namespace vonel {

namespace fs = std::filesystem;

namespace {

constexpr int kFilterDelayMs = 400;
// A listing lets the window run at least this often, so that no click waits long.
constexpr qint64 kYieldEveryMs = 15;
constexpr long kArchiveAdviceCount = 1501;
const char* const kLoadingText = "Loading message folder";

bool sameFolder(const fs::path& a, const fs::path& b) {
  return !a.empty() && text::equalsNoCase(store::folderKey(a), store::folderKey(b));
}

}  // namespace

MessageListPane::MessageListPane(AppContext& context, QWidget* parent)
    : QWidget(parent),
      context_(context),
      caches_(context, *this),
      lister_(context, *this),
      search_(new QLineEdit(this)),
      tags_(new QComboBox(this)),
      status_(new QLabel(this)),
      view_(new MessageListView(this)),
      backup_(new QTreeView(this)),
      searchTimer_(new QTimer(this)),
      tagsTimer_(new QTimer(this)) {
  search_->setObjectName("txtSearchString");
  search_->setToolTip("Filter to emails containing this string in the header");
  search_->setAccessibleName("Header filter");
  search_->setClearButtonEnabled(true);
  tags_->setObjectName("cmbTags");
  tags_->setToolTip("Tags filter. Clear to show all mail.");
  tags_->setAccessibleName("Tags filter");
  tags_->setEditable(true);
  tags_->setInsertPolicy(QComboBox::NoInsert);
  status_->setObjectName("lblMessageListStatus");
  // The room the text needs is kept when it is hidden, so the boxes don't jump.
  status_->setMinimumWidth(status_->fontMetrics().horizontalAdvance(kLoadingText) + 8);
  status_->setAccessibleName("Message list status");

  view_->setModel(&model_);
  backup_->setObjectName("ListViewBackup");
  backup_->setAccessibleName("Message list backup");
  backup_->setModel(&backupModel_);
  backup_->hide();

  const struct {
    MessageListColumn column;
    int width;
  } widths[] = {{MessageListColumn::Icon, 28},     {MessageListColumn::Size, 60},      {MessageListColumn::From, 170},
                {MessageListColumn::Subject, 320}, {MessageListColumn::Received, 150}, {MessageListColumn::Sent, 150},
                {MessageListColumn::Bayes, 50}};
  for (const auto& [column, width] : widths) view_->setColumnWidth(static_cast<int>(column), width);

  auto* filters = new QHBoxLayout;
  filters->addWidget(search_, 3);
  filters->addWidget(tags_, 2);
  filters->addWidget(status_);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(filters);
  layout->addWidget(view_, 1);
  layout->addWidget(backup_);

  for (auto [timer, name] : {std::pair{searchTimer_, "TimerSearchString"}, std::pair{tagsTimer_, "TimerTags"}}) {
    timer->setObjectName(name);
    timer->setSingleShot(true);
    timer->setInterval(kFilterDelayMs);
    connect(timer, &QTimer::timeout, this, &MessageListPane::onFilterTimer);
  }
  // Each change starts the wait again: typing a word lists the folder once.
  connect(search_, &QLineEdit::textChanged, searchTimer_, qOverload<>(&QTimer::start));
  connect(tags_, &QComboBox::editTextChanged, tagsTimer_, qOverload<>(&QTimer::start));

  connect(view_, &MessageListView::rowChosen, this, &MessageListPane::chooseRow);
  connect(view_, &MessageListView::rowOpened, this, [this](int row) {
    const QString file = model_.fileAt(row);
    if (!file.isEmpty()) emit openRequested(file);
  });
  connect(view_, &MessageListView::sortRequested, &model_, &MessageListModel::sort);
}

MessageListPane::~MessageListPane() {
  // What the caches learned is kept for the next start; nothing runs the window meanwhile.
  closing_ = true;
  caches_.writeAll();
}

void MessageListPane::showFolder(const fs::path& folder, const QString& name) {
  ask(Request{Work::List, folder, name});
}

void MessageListPane::relist() {
  if (!folder_.empty()) ask(Request{Work::List, folder_, folderName_});
}

void MessageListPane::rescanFolder() {
  if (working_ || folder_.empty()) return;
  ask(Request{Work::RescanFolder, folder_, folderName_});
}

void MessageListPane::rescanAll() { ask(Request{Work::RescanAll, folder_, folderName_}); }

void MessageListPane::stopPopulating() {
  lister_.stopPopulating();
  caches_.stopFilling();
}

void MessageListPane::ask(Request request) {
  // The newest request wins; one under way stops at its next yield and the loop below takes this one up.
  pending_ = std::move(request);
  if (working_) {
    stopPopulating();
    return;
  }
  runRequests();
}

void MessageListPane::runRequests() {
  working_ = true;
  while (pending_) {
    const Request request = std::move(*pending_);
    pending_.reset();
    if (request.work != Work::List) {
      // The list indexes the caches about to change.
      model_.clear();
      model_.setSource(nullptr);
      if (request.work == Work::RescanFolder) {
        store::removeUnreadTag(context_.log, request.folder);
        caches_.rescan(request.folder);
      } else {
        caches_.rescanAll();
      }
      if (pending_) continue;
    }
    if (!request.folder.empty()) populate(request);
  }
  status_->clear();
  working_ = false;
}

void MessageListPane::populate(const Request& request) {
  guardedStep(context_.log, log_places::kPopulateListView, log_places::kMailerModule, [&] {
    folder_ = request.folder;
    folderName_ = request.name;
    listedCache_ = nullptr;
    searchedCache_ = nullptr;
    model_.clear();
    model_.setSource(nullptr);
    emit clearPreview();
    model_.setRecipientColumn(sameFolder(folder_, context_.folders.sentFolderPath) || outboxShown());
    showFilter_ = store::folderShowFilter(folder_);
    emit showFilterChanged(showFilter_);
    filter_.unreadOnly = showFilter_ == store::ShowFilter::UnreadOnly;
    filter_.highOnly = showFilter_ == store::ShowFilter::UnreadHighOnly;
    filter_.searchText = fromQString(search_->text());
    filter_.tagFilter = fromQString(tags_->currentText());
    status_->setText(kLoadingText);

    if (context_.noCacheMode) return lister_.populateMessageList(folder_, filter_);
    store::FolderCache* cache = caches_.find(folder_);
    if (cache == nullptr || !cache->cacheFilled()) {
      model_.showNotice("Scanning messages...");
      yieldNow();
      if (pending_) return;
      cache = &caches_.obtain(folder_);
      const bool whole = cache->fillCache(*this, folder_, fromQString(folderName_));
      cache->writeCache(false);
      if (!whole) model_.clear();
      if (pending_ || !whole) return;
    }
    // A search reads the files, yet a message the cache holds is shown from there.
    model_.setSource(&cache->messages);
    (filter_.searchText.empty() ? listedCache_ : searchedCache_) = cache;
    lister_.populateFromCache(*cache, filter_);
  });
}

bool MessageListPane::filtersOff() const {
  return showFilter_ == store::ShowFilter::All && search_->text().isEmpty() && tags_->currentText().isEmpty();
}

bool MessageListPane::outboxShown() const { return sameFolder(folder_, context_.folders.outboxFolderPath); }

QString MessageListPane::folderKey() const { return toQString(text::lower(store::folderKey(folder_))); }

void MessageListPane::chooseRow(int row) {
  const QString file = model_.fileAt(row);
  if (file.isEmpty()) return;
  if (!outboxShown()) lastChosen_.insert(folderKey(), file);
  emit previewRequested(file);
}

void MessageListPane::selectAndPreviewLastRow() {
  const int rows = model_.rowCount();
  if (rows == 0 || outboxShown()) return;
  int row = model_.rowOfFile(lastChosen_.value(folderKey()));
  if (row < 0) row = rows - 1;
  const QModelIndex chosen = model_.index(row, 0);
  view_->selectionModel()->setCurrentIndex(chosen, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  view_->scrollTo(chosen);
  chooseRow(row);
}

void MessageListPane::rebuildTagsCombo() {
  const QSignalBlocker quiet(tags_);
  const QString typed = tags_->currentText();
  tags_->clear();
  for (const auto& entry : lister_.tagsSeen) tags_->addItem(toQString(entry.value));
  tags_->setCurrentIndex(-1);
  tags_->setEditText(typed);
}

QString MessageListPane::displayCount() const {
  const int rows = model_.rowCount();
  QString text = rows == 0 ? QStringLiteral("No") : QString::number(rows);
  if (showFilter_ != store::ShowFilter::All) text += " unread";
  text += rows == 1 ? " message in " : " messages in ";
  return text + folderName_;
}

void MessageListPane::onFilterTimer() { relist(); }

void MessageListPane::cycleShowFilter() {
  if (folder_.empty()) return;
  using store::ShowFilter;
  const ShowFilter next = showFilter_ == ShowFilter::All          ? ShowFilter::UnreadOnly
                          : showFilter_ == ShowFilter::UnreadOnly ? ShowFilter::UnreadHighOnly
                                                                  : ShowFilter::All;
  store::setFolderShowFilter(context_.log, folder_, next);
  showFilter_ = next;
  emit showFilterChanged(next);
  relist();
}

QStringList MessageListPane::selectedFiles() const {
  QModelIndexList rows = view_->selectionModel()->selectedRows();
  std::sort(rows.begin(), rows.end(), [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
  QStringList files;
  for (const QModelIndex& row : rows) {
    const QString file = model_.fileAt(row.row());
    if (!file.isEmpty()) files.append(file);
  }
  return files;
}

QString MessageListPane::currentFile() const {
  const QModelIndex current = view_->currentIndex();
  return current.isValid() ? model_.fileAt(current.row()) : QString();
}

void MessageListPane::onClearMessages() { model_.clear(); }

void MessageListPane::onFolderMessageCount(long count) {
  emit folderMessageCount(QString::number(count) + " messages");
  emit folderCountHint(count >= kArchiveAdviceCount
                           ? QStringLiteral("You can speed the program up by using 'Archive old mail'")
                           : QString());
}

void MessageListPane::addMessage(message::Message& message, long counter, long /*total*/) {
  if (listedCache_ != nullptr) return model_.addIndexed(static_cast<std::size_t>(counter - 1), message.colour);
  if (searchedCache_ != nullptr) {
    const std::size_t known = searchedCache_->messages.indexOf(store::messageKey(message.filename()));
    if (known != std::string_view::npos) return model_.addIndexed(known, message.colour);
  }
  model_.addOwned(message);
}

void MessageListPane::onSomeUnreadMessages() { emit someUnread(); }

void MessageListPane::onNoUnreadMessages() {
  store::removeUnreadTag(context_.log, folder_);
  emit noUnread();
}

void MessageListPane::onFinishedAddingMessages(long /*unreadCount*/, long /*mostRecentUnread*/) {
  model_.flush();
  if (filtersOff()) {
    const int bold = model_.unreadRows();
    if (bold > 0) store::createUnreadTag(context_.log, folder_, bold);
    emit unreadCompared(bold);
  }
  rebuildTagsCombo();
  const QHeaderView* header = view_->header();
  if (header->sortIndicatorSection() >= 0) model_.sort(header->sortIndicatorSection(), header->sortIndicatorOrder());
  if (model_.rowCount() > 0) view_->scrollToBottom();
  selectAndPreviewLastRow();
  emit countText(displayCount());
  emit finished();
}

void MessageListPane::setBusy(bool busy) {
  if (busy == busyCursor_) return;
  busyCursor_ = busy;
  if (busy) {
    QApplication::setOverrideCursor(Qt::BusyCursor);
  } else {
    QApplication::restoreOverrideCursor();
  }
}

void MessageListPane::letEventsRun() {
  if (closing_ || (sinceYield_.isValid() && sinceYield_.elapsed() < kYieldEveryMs)) return;
  yieldNow();
}

void MessageListPane::yieldNow() {
  model_.flush();
  QCoreApplication::processEvents();
  sinceYield_.restart();
}

void MessageListPane::status(std::string_view text) { emit progressText(toQString(text)); }

}  // namespace vonel
