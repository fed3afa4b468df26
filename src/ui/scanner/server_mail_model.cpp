#include "ui/scanner/server_mail_model.h"

#include <QFont>
#include <algorithm>

#include "app/qtext.h"
#include "core/rules/status_word.h"
#include "core/text/numbers.h"

namespace vonel {
namespace {

constexpr int kFlushDelayMs = 100;
// Past this many waiting rows they go in at once, so a long scan shows progress.
constexpr std::size_t kLargestBatch = 2000;

// Colours are kept as blue-green-red numbers: 255 is red.
QColor colourOf(std::int32_t bgr) { return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF); }

}  // namespace

ServerMailRow messageRow(const message::Message& m, long number, const std::string& server) {
  ServerMailRow row;
  row.kind = ServerMailRowKind::Message;
  row.key = toQString(m.messageId);
  row.cell(ServerMailColumn::Status) = toQString(rules::statusWord(m));
  row.cell(ServerMailColumn::Size) = QString::number(text::toWhole<long long>(m.size)) + "kb";
  row.cell(ServerMailColumn::From) = toQString(m.from);
  row.cell(ServerMailColumn::Subject) = m.ignored ? QStringLiteral("N/A") : toQString(m.subject);
  row.cell(ServerMailColumn::FilteredBy) = toQString(m.filterReason);
  row.cell(ServerMailColumn::Account) = toQString(m.toEmail());
  row.cell(ServerMailColumn::AccountIndex) = QString::number(m.fromAccount);
  row.cell(ServerMailColumn::Server) = toQString(server);
  row.cell(ServerMailColumn::Number) = QString::number(number);
  row.colour = colourOf(m.colour);
  return row;
}

ServerMailModel::ServerMailModel(QObject* parent) : QAbstractTableModel(parent) {
  flushTimer_.setSingleShot(true);
  flushTimer_.setInterval(kFlushDelayMs);
  connect(&flushTimer_, &QTimer::timeout, this, &ServerMailModel::flush);
}

int ServerMailModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ServerMailModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : kServerMailColumns; }

QVariant ServerMailModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const ServerMailRow& r = row(index.row());
  switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
      return r.cells[static_cast<std::size_t>(index.column())];
    case Qt::ForegroundRole:
      return r.colour.isValid() ? QVariant(r.colour) : QVariant();
    case Qt::FontRole:
      if (r.kind == ServerMailRowKind::Server) {
        QFont bold;
        bold.setBold(true);
        return bold;
      }
      return {};
    default:
      return {};
  }
}

QVariant ServerMailModel::headerData(int section, Qt::Orientation orientation, int role) const {
  // "MsgNum" names the server's column: the caption stays as users know it.
  static const std::array<QString, kServerMailColumns> captions{"Status", "Size", "From",   "Subject", "Filtered By",
                                                                "Accnt",  "Msg",  "MsgNum", ""};
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= kServerMailColumns) {
    return QAbstractTableModel::headerData(section, orientation, role);
  }
  return captions[static_cast<std::size_t>(section)];
}

void ServerMailModel::clear() {
  flushTimer_.stop();
  beginResetModel();
  rows_.clear();
  waiting_.clear();
  messageRows_.clear();
  endResetModel();
}

void ServerMailModel::add(ServerMailRow row) {
  waiting_.push_back(std::move(row));
  if (waiting_.size() >= kLargestBatch) {
    flush();
  } else if (!flushTimer_.isActive()) {
    flushTimer_.start();
  }
}

void ServerMailModel::addServer(const QString& title) {
  ServerMailRow row;
  row.kind = ServerMailRowKind::Server;
  row.key = title;
  row.cell(ServerMailColumn::From) = title;
  add(std::move(row));
}

void ServerMailModel::addNotice(const QString& text) {
  ServerMailRow row;
  row.kind = ServerMailRowKind::Notice;
  row.cell(ServerMailColumn::From) = text;
  add(std::move(row));
}

bool ServerMailModel::setServerStatus(const QString& title, const QString& status) {
  const auto isServer = [&title](const ServerMailRow& row) {
    return row.kind == ServerMailRowKind::Server && row.key == title;
  };
  // The newest row of that title; the waiting rows are newer than the shown ones.
  const auto waiting = std::find_if(waiting_.rbegin(), waiting_.rend(), isServer);
  if (waiting != waiting_.rend()) {
    waiting->cell(ServerMailColumn::From) = title + " - " + status;
    return true;
  }
  const auto shown = std::find_if(rows_.rbegin(), rows_.rend(), isServer);
  if (shown == rows_.rend()) return false;
  shown->cell(ServerMailColumn::From) = title + " - " + status;
  const int position = static_cast<int>(std::distance(rows_.begin(), shown.base()) - 1);
  const QModelIndex cell = index(position, static_cast<int>(ServerMailColumn::From));
  emit dataChanged(cell, cell);
  return true;
}

void ServerMailModel::flush() {
  flushTimer_.stop();
  if (waiting_.empty()) return;
  const int first = rowCount();
  beginInsertRows({}, first, first + static_cast<int>(waiting_.size()) - 1);
  rows_.reserve(rows_.size() + waiting_.size());
  for (auto& row : waiting_) {
    if (row.kind == ServerMailRowKind::Message) messageRows_.insert(row.key, static_cast<int>(rows_.size()));
    rows_.push_back(std::move(row));
  }
  waiting_.clear();
  endInsertRows();
}

int ServerMailModel::rowOfKey(const QString& key) const { return messageRows_.value(key, -1); }

}  // namespace vonel
