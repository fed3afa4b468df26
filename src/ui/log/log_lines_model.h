#pragma once
// The lines of a log file of any size as a list, read through a memory map:
// only the lines a view shows are ever decoded. The newest page is indexed at
// once; the lines before it are indexed in slices between events and then
// put in front, so opening a large log never stalls the window.
#include <QAbstractListModel>
#include <QFile>
#include <QSize>
#include <QTimer>
#include <string_view>
#include <vector>

namespace vonel {

class LogLinesModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  explicit LogLinesModel(QObject* parent = nullptr);

  // Shows the file as it is now; an absent or empty file shows no lines.
  void open(const QString& path);
  bool isIndexing() const { return headScanned_ < headEnd_; }

  // The size of one character of the view's fixed-width font, so that the
  // longest line sets the width the view can scroll across.
  void setCharacterCell(QSize cell) { cell_ = cell; }

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

  // The bytes of one line without its line end.
  std::string_view line(int row) const;

 signals:
  // Every line of the file is listed.
  void indexed();

 private:
  void onIndexSlice();
  void noteLength(qint64 start, qint64 end);

  QFile file_;
  std::string_view bytes_;
  std::vector<qint64> starts_;      // where each listed line begins
  std::vector<qint64> headStarts_;  // lines before the first listed one, found so far
  qint64 headScanned_ = 0;
  qint64 headEnd_ = 0;
  qint64 longest_ = 0;
  QSize cell_;
  QTimer slice_;
};

}  // namespace vonel
