#pragma once
// The log's list of lines. A million lines arriving at once are laid out in
// batches between events, so the window never stalls; a line the user should
// see is scrolled to once the batches reach it, and until then the view keeps
// its last picture rather than show lines in passing.
#include <QListView>
#include <QPersistentModelIndex>

namespace vonel {

class LogView final : public QListView {
  Q_OBJECT

 public:
  explicit LogView(QWidget* parent = nullptr);

  // One character of its fixed-width font.
  QSize characterCell() const;

  // Scrolls the row into sight now, or as soon as it is laid out.
  void keepInSight(const QModelIndex& index, ScrollHint hint);

 protected:
  void updateGeometries() override;

 private:
  QPersistentModelIndex pending_;
  ScrollHint hint_ = EnsureVisible;
};

}  // namespace vonel
