#pragma once
// The mail waiting on the servers, one row a message, with a row for each
// server polled and the odd notice. The scanner's list and the mailer's list
// of server mail are two views on one such model.
#include <QAbstractTableModel>
#include <QColor>
#include <QHash>
#include <QTimer>
#include <array>
#include <string>
#include <vector>

#include "core/message/message.h"

namespace vonel {

enum class ServerMailColumn {
  Status = 0,
  Size,
  From,
  Subject,
  FilteredBy,
  Account,  // the recipient's address
  AccountIndex,
  Server,
  Number,  // the row's number within the scan; not shown
};

inline constexpr int kServerMailColumns = 9;

enum class ServerMailRowKind { Server, Message, Notice };

struct ServerMailRow {
  ServerMailRowKind kind = ServerMailRowKind::Message;
  QString key;  // the message's key, or the server's title
  std::array<QString, kServerMailColumns> cells;
  QColor colour;

  const QString& cell(ServerMailColumn column) const { return cells[static_cast<std::size_t>(column)]; }
  QString& cell(ServerMailColumn column) { return cells[static_cast<std::size_t>(column)]; }
};

// A judged header as its row: `number` counts the headers of the scan, and
// `server` is where the account was polled.
ServerMailRow messageRow(const message::Message& message, long number, const std::string& server);

class ServerMailModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit ServerMailModel(QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  void clear();
  // Rows wait briefly and enter the views together, so a scan of thousands
  // of headers costs the views a few layouts instead of one per header.
  void add(ServerMailRow row);
  void addServer(const QString& title);
  void addNotice(const QString& text);
  // False when no server row has that title. A row still waiting counts:
  // a status may arrive before its row shows.
  bool setServerStatus(const QString& title, const QString& status);
  // Lets the waiting rows in now.
  void flush();

  // Only rows that have entered the views.
  const ServerMailRow& row(int index) const { return rows_[static_cast<std::size_t>(index)]; }
  // -1 when no message row has that key.
  int rowOfKey(const QString& key) const;

 private:
  std::vector<ServerMailRow> rows_;
  std::vector<ServerMailRow> waiting_;
  QHash<QString, int> messageRows_;
  QTimer flushTimer_;
};

}  // namespace vonel
