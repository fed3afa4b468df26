#pragma once
// The messages of the folder shown, one row a message, as a table over the
// folder's cache: a row is a position in the cache and the colour its age
// gave it, and text becomes a QString only when a view asks for a cell. A
// folder of 50,000 messages costs the list a few hundred kilobytes.
#include <QAbstractTableModel>
#include <QIcon>
#include <array>
#include <cstdint>
#include <vector>

#include "core/message/message.h"
#include "core/store/cached_message.h"
#include "core/text/keyed_collection.h"

namespace vonel {

enum class MessageListColumn { Icon = 0, Size, From, Subject, Received, Sent, Bayes };
inline constexpr int kMessageListColumns = 7;

// What the icon column shows of a message's flags.
enum class MessageIcon { Blank, ExclaimUnreadReply, ExclaimUnread, ExclaimReply, UnreadReply, Unread, Reply };
MessageIcon messageIcon(bool highPriority, bool unread, bool replied);
// The icon's key ("exclaimunreadreply", ..., "blank").
QString messageIconKey(MessageIcon icon);

class MessageListModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  // The icon's key, for tests and for readers of the list.
  static constexpr int kIconKeyRole = Qt::UserRole + 1;

  explicit MessageListModel(QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  // Size by its number; the other columns as text, ignoring case. Stable, so
  // a sort on one column keeps the order of the last among equals.
  void sort(int column, Qt::SortOrder order) override;

  // The folders of sent mail name the recipient where others name the sender.
  void setRecipientColumn(bool showRecipient);

  void clear();
  // One row carrying a notice in the From column, until the next clear.
  void showNotice(const QString& text);
  // The cache whose positions later rows name; null for none.
  void setSource(const text::KeyedCollection<store::CachedMessage>* messages);
  // A row for the message at that position of the source.
  void addIndexed(std::size_t position, std::int32_t colour);
  // A row for a message the source doesn't hold; the list keeps a copy.
  void addOwned(const message::Message& message);
  // Lets the waiting rows in, with one insert.
  void flush();

  // The message file of a row, its name in the case of its read state; empty
  // for a row that names nothing.
  QString fileAt(int row) const;
  // -1 when no row has that file, compared ignoring case.
  int rowOfFile(const QString& file) const;
  // How many rows are unread, and so bold.
  int unreadRows() const;
  const store::CachedMessage* record(int row) const;

 private:
  struct Row {
    std::uint32_t ref;  // a position in the source, or with kOwned set in owned_
    std::int32_t colour;
  };
  static constexpr std::uint32_t kOwned = 0x80000000u;

  const store::CachedMessage* recordOf(Row row) const;
  QVariant displayText(const store::CachedMessage& message, MessageListColumn column) const;
  const QIcon& icon(MessageIcon which) const;

  const text::KeyedCollection<store::CachedMessage>* source_ = nullptr;
  std::vector<store::CachedMessage> owned_;
  std::vector<Row> rows_;
  std::vector<Row> waiting_;
  QString notice_;
  bool showRecipient_ = false;
  mutable std::array<QIcon, 7> icons_;
};

}  // namespace vonel
