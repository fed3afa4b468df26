#pragma once
// The list of messages: rows selected by mouse in any number, and the
// movement keys walking one selected row at a time so that each row they
// reach is previewed.
#include <QTreeView>
#include <optional>

namespace vonel {

class MessageListView final : public QTreeView {
  Q_OBJECT

 public:
  explicit MessageListView(QWidget* parent = nullptr);

 signals:
  // A movement key or a click chose the row.
  void rowChosen(int row);
  void rowOpened(int row);
  void sortRequested(int column, Qt::SortOrder order);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  // The keys the list handles itself, and where each one moves.
  static std::optional<CursorAction> movementOf(int key);
  void onHeaderClicked(int section);

  // Flips at every header click, whichever column it is on.
  Qt::SortOrder sortOrder_ = Qt::DescendingOrder;
};

}  // namespace vonel
