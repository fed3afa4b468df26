#include "ui/mailer/message_list_model.h"

#include <QColor>
#include <QFont>
#include <algorithm>
#include <numeric>
#include <string_view>

#include "app/qtext.h"
#include "core/message/address.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"
#include "ui/pictures.h"

namespace vonel {
namespace {

// Colours are kept as blue-green-red numbers: 255 is red.
QColor colourOf(std::int32_t bgr) { return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF); }

// The person a row names: the recipient in the folders of sent mail.
std::string nameOf(const store::CachedMessage& message, bool recipient) {
  return message::extractName(recipient ? message.toEmail : message.from);
}

}  // namespace

MessageIcon messageIcon(bool highPriority, bool unread, bool replied) {
  // High priority alone has no picture: a read high-priority message is blank.
  if (highPriority && unread) return replied ? MessageIcon::ExclaimUnreadReply : MessageIcon::ExclaimUnread;
  if (highPriority) return replied ? MessageIcon::ExclaimReply : MessageIcon::Blank;
  if (unread) return replied ? MessageIcon::UnreadReply : MessageIcon::Unread;
  return replied ? MessageIcon::Reply : MessageIcon::Blank;
}

QString messageIconKey(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::ExclaimUnreadReply: return QStringLiteral("exclaimunreadreply");
    case MessageIcon::ExclaimUnread: return QStringLiteral("exclaimunread");
    case MessageIcon::ExclaimReply: return QStringLiteral("exclaimreply");
    case MessageIcon::UnreadReply: return QStringLiteral("unreadreply");
    case MessageIcon::Unread: return QStringLiteral("unread");
    case MessageIcon::Reply: return QStringLiteral("reply");
    case MessageIcon::Blank: break;
  }
  return QStringLiteral("blank");
}

MessageListModel::MessageListModel(QObject* parent) : QAbstractTableModel(parent) {}

int MessageListModel::rowCount(const QModelIndex& parent) const {
  if (parent.isValid()) return 0;
  return notice_.isEmpty() ? static_cast<int>(rows_.size()) : 1;
}

int MessageListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kMessageListColumns;
}

const store::CachedMessage* MessageListModel::recordOf(Row row) const {
  if ((row.ref & kOwned) != 0) return &owned_[row.ref & ~kOwned];
  // A cache that shrank under the list shows the rows it lost as empty.
  if (source_ == nullptr || row.ref >= source_->size()) return nullptr;
  return &source_->at(row.ref).value;
}

const store::CachedMessage* MessageListModel::record(int row) const {
  if (!notice_.isEmpty() || row < 0 || row >= static_cast<int>(rows_.size())) return nullptr;
  return recordOf(rows_[static_cast<std::size_t>(row)]);
}

const QIcon& MessageListModel::icon(MessageIcon which) const {
  QIcon& drawn = icons_[static_cast<std::size_t>(which)];
  if (drawn.isNull() && which != MessageIcon::Blank) drawn = pictures::icon("msg_" + messageIconKey(which));
  return drawn;
}

QVariant MessageListModel::displayText(const store::CachedMessage& message, MessageListColumn column) const {
  switch (column) {
    case MessageListColumn::Size:
      return QString::number(text::toWhole<long long>(message.size)) + QStringLiteral(" KB");
    case MessageListColumn::From: return toQString(nameOf(message, showRecipient_));
    case MessageListColumn::Subject: return toQString(message.subject);
    case MessageListColumn::Received: return toQString(message.receiveDate);
    case MessageListColumn::Sent: return toQString(message.sendDate);
    // A listed row carries no score yet.
    case MessageListColumn::Bayes: return QStringLiteral("0.00");
    case MessageListColumn::Icon: break;
  }
  return QString();
}

QVariant MessageListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const auto column = static_cast<MessageListColumn>(index.column());
  if (!notice_.isEmpty()) {
    return role == Qt::DisplayRole && column == MessageListColumn::From ? QVariant(notice_) : QVariant();
  }
  const Row row = rows_[static_cast<std::size_t>(index.row())];
  const store::CachedMessage* message = recordOf(row);
  if (message == nullptr) return {};
  const MessageIcon which = messageIcon(message->highPriority, !message->read, message->replied);
  switch (role) {
    case Qt::DisplayRole: return displayText(*message, column);
    case Qt::ToolTipRole: return column == MessageListColumn::Icon ? QVariant() : displayText(*message, column);
    case Qt::DecorationRole:
      return column == MessageListColumn::Icon && which != MessageIcon::Blank ? QVariant(icon(which)) : QVariant();
    case Qt::AccessibleTextRole:
      // A screen reader says what the picture shows.
      return column == MessageListColumn::Icon ? QVariant(messageIconKey(which)) : QVariant();
    case kIconKeyRole: return messageIconKey(which);
    case Qt::FontRole: {
      if (message->read) return {};
      QFont bold;
      bold.setBold(true);
      return bold;
    }
    case Qt::ForegroundRole: return colourOf(row.colour);
    default: return {};
  }
}

QVariant MessageListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= kMessageListColumns) {
    return QAbstractTableModel::headerData(section, orientation, role);
  }
  static const std::array<QString, kMessageListColumns> captions{"",         "Size", "From", "Subject",
                                                                 "Received", "Sent", "Bayes"};
  if (section == static_cast<int>(MessageListColumn::From) && showRecipient_) return QStringLiteral("To");
  return captions[static_cast<std::size_t>(section)];
}

void MessageListModel::setRecipientColumn(bool showRecipient) {
  if (showRecipient == showRecipient_) return;
  showRecipient_ = showRecipient;
  const int from = static_cast<int>(MessageListColumn::From);
  emit headerDataChanged(Qt::Horizontal, from, from);
  if (!rows_.empty()) emit dataChanged(index(0, from), index(rowCount() - 1, from));
}

void MessageListModel::clear() {
  beginResetModel();
  rows_.clear();
  rows_.shrink_to_fit();
  waiting_.clear();
  owned_.clear();
  owned_.shrink_to_fit();
  notice_.clear();
  endResetModel();
}

void MessageListModel::showNotice(const QString& text) {
  beginResetModel();
  notice_ = text;
  endResetModel();
}

void MessageListModel::setSource(const text::KeyedCollection<store::CachedMessage>* messages) { source_ = messages; }

void MessageListModel::addIndexed(std::size_t position, std::int32_t colour) {
  waiting_.push_back(Row{static_cast<std::uint32_t>(position), colour});
}

void MessageListModel::addOwned(const message::Message& message) {
  owned_.push_back(store::CachedMessage::of(message));
  waiting_.push_back(Row{static_cast<std::uint32_t>(owned_.size() - 1) | kOwned, message.colour});
}

void MessageListModel::flush() {
  if (waiting_.empty()) return;
  if (!notice_.isEmpty()) {
    // The first rows replace the notice.
    beginResetModel();
    notice_.clear();
    rows_.insert(rows_.end(), waiting_.begin(), waiting_.end());
    waiting_.clear();
    endResetModel();
    return;
  }
  const int first = static_cast<int>(rows_.size());
  beginInsertRows({}, first, first + static_cast<int>(waiting_.size()) - 1);
  rows_.insert(rows_.end(), waiting_.begin(), waiting_.end());
  waiting_.clear();
  endInsertRows();
}

QString MessageListModel::fileAt(int row) const {
  const store::CachedMessage* message = record(row);
  return message == nullptr ? QString() : toQString(message->pathInReadCase());
}

int MessageListModel::rowOfFile(const QString& file) const {
  if (file.isEmpty()) return -1;
  const std::string wanted = fromQString(file);
  for (int row = 0; row < static_cast<int>(rows_.size()); ++row) {
    const store::CachedMessage* message = record(row);
    if (message != nullptr && text::equalsNoCase(message->filename, wanted)) return row;
  }
  return -1;
}

int MessageListModel::unreadRows() const {
  return static_cast<int>(std::count_if(rows_.begin(), rows_.end(), [this](Row row) {
    const store::CachedMessage* message = recordOf(row);
    return message != nullptr && !message->read;
  }));
}

void MessageListModel::sort(int column, Qt::SortOrder order) {
  if (rows_.empty() || !notice_.isEmpty() || column < 0 || column >= kMessageListColumns) return;
  const auto which = static_cast<MessageListColumn>(column);
  if (which == MessageListColumn::Icon || which == MessageListColumn::Bayes) return;  // every row's text is the same
  emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);

  std::vector<std::size_t> permutation(rows_.size());
  std::iota(permutation.begin(), permutation.end(), 0);
  const auto stableBy = [&](auto less) {
    if (order == Qt::AscendingOrder) {
      std::stable_sort(permutation.begin(), permutation.end(), less);
    } else {
      std::stable_sort(permutation.begin(), permutation.end(),
                       [&](std::size_t a, std::size_t b) { return less(b, a); });
    }
  };
  static const store::CachedMessage kNothing;
  const auto at = [&](std::size_t row) -> const store::CachedMessage& {
    const store::CachedMessage* message = recordOf(rows_[row]);
    return message == nullptr ? kNothing : *message;
  };
  // The keys are taken out once, side by side, and the text ones folded to
  // upper case: comparing them then touches neither the cache nor a case table.
  if (which == MessageListColumn::Size) {
    std::vector<float> sizes(rows_.size());
    for (std::size_t row = 0; row < rows_.size(); ++row) sizes[row] = at(row).size;
    stableBy([&](std::size_t a, std::size_t b) { return sizes[a] < sizes[b]; });
  } else {
    std::vector<std::string> keys(rows_.size());
    for (std::size_t row = 0; row < rows_.size(); ++row) {
      const store::CachedMessage& message = at(row);
      switch (which) {
        case MessageListColumn::From: keys[row] = text::upper(nameOf(message, showRecipient_)); break;
        case MessageListColumn::Subject: keys[row] = text::upper(message.subject); break;
        case MessageListColumn::Received: keys[row] = text::upper(message.receiveDate); break;
        default: keys[row] = text::upper(message.sendDate); break;
      }
    }
    // std::string compares its bytes unsigned, as the code page orders them.
    stableBy([&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
  }

  std::vector<Row> sorted;
  sorted.reserve(rows_.size());
  std::vector<int> newRowOf(rows_.size());
  for (std::size_t to = 0; to < permutation.size(); ++to) {
    sorted.push_back(rows_[permutation[to]]);
    newRowOf[permutation[to]] = static_cast<int>(to);
  }
  rows_ = std::move(sorted);
  const QModelIndexList before = persistentIndexList();
  QModelIndexList after;
  after.reserve(before.size());
  for (const QModelIndex& old : before)
    after.append(index(newRowOf[static_cast<std::size_t>(old.row())], old.column()));
  changePersistentIndexList(before, after);
  emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

}  // namespace vonel
