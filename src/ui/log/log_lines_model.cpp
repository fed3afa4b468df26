#include "ui/log/log_lines_model.h"

#include <algorithm>
#include <cstring>

#include "app/qtext.h"
#include "core/log/log_tail.h"

namespace vonel {
namespace {

// Enough for several screens of lines; indexed before the window first shows.
constexpr std::size_t kFirstPageBytes = 256 * 1024;
// About a few milliseconds of scanning between two turns of the event loop.
constexpr qint64 kSliceBytes = 8 * 1024 * 1024;
// Wider lines are cut by the view rather than make its width absurd.
constexpr qint64 kWidestLine = 2000;

}  // namespace

LogLinesModel::LogLinesModel(QObject* parent) : QAbstractListModel(parent) {
  slice_.setInterval(0);
  connect(&slice_, &QTimer::timeout, this, &LogLinesModel::onIndexSlice);
}

void LogLinesModel::open(const QString& path) {
  beginResetModel();
  slice_.stop();
  file_.close();
  file_.setFileName(path);
  bytes_ = {};
  starts_.clear();
  headStarts_.clear();
  headScanned_ = headEnd_ = longest_ = 0;
  if (file_.open(QIODevice::ReadOnly) && file_.size() > 0) {
    if (const uchar* mapped = file_.map(0, file_.size())) {
      bytes_ = std::string_view(reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(file_.size()));
    }
  }
  const auto first = static_cast<qint64>(tailStart(bytes_, kFirstPageBytes));
  for (qint64 start = first; start < static_cast<qint64>(bytes_.size());) {
    starts_.push_back(start);
    const auto end = bytes_.find('\n', static_cast<std::size_t>(start));
    const qint64 next = end == std::string_view::npos ? static_cast<qint64>(bytes_.size()) : static_cast<qint64>(end) + 1;
    noteLength(start, next);
    start = next;
  }
  headEnd_ = first;
  endResetModel();
  if (isIndexing()) {
    headStarts_.push_back(0);
    slice_.start();
  } else {
    emit indexed();
  }
}

void LogLinesModel::onIndexSlice() {
  const qint64 sliceEnd = std::min(headEnd_, headScanned_ + kSliceBytes);
  const char* const base = bytes_.data();
  for (const char* at = base + headScanned_; at < base + sliceEnd;) {
    const auto* end = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(base + sliceEnd - at)));
    if (end == nullptr) break;
    const qint64 next = end - base + 1;
    noteLength(headStarts_.back(), next);
    // The head ends at a line start, which the listed lines already hold.
    if (next < headEnd_) headStarts_.push_back(next);
    at = end + 1;
  }
  headScanned_ = sliceEnd;
  if (isIndexing()) return;
  slice_.stop();
  beginInsertRows({}, 0, static_cast<int>(headStarts_.size()) - 1);
  starts_.insert(starts_.begin(), headStarts_.begin(), headStarts_.end());
  headStarts_ = {};
  endInsertRows();
  emit indexed();
}

void LogLinesModel::noteLength(qint64 start, qint64 end) { longest_ = std::max(longest_, end - start); }

int LogLinesModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(starts_.size());
}

std::string_view LogLinesModel::line(int row) const {
  const auto index = static_cast<std::size_t>(row);
  const auto start = static_cast<std::size_t>(starts_[index]);
  const std::size_t end = index + 1 < starts_.size() ? static_cast<std::size_t>(starts_[index + 1]) : bytes_.size();
  std::string_view text = bytes_.substr(start, end - start);
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.remove_suffix(1);
  return text;
}

QVariant LogLinesModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
      return toQString(line(index.row()).substr(0, kWidestLine));
    case Qt::SizeHintRole:
      if (cell_.isEmpty()) return {};
      return QSize(static_cast<int>(std::min(longest_, kWidestLine) + 2) * cell_.width(), cell_.height());
    default:
      return {};
  }
}

}  // namespace vonel
