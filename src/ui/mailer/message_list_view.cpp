#include "ui/mailer/message_list_view.h"

#include <QHeaderView>
#include <QKeyEvent>

#include "ui/mailer/message_list_delegate.h"

namespace vonel {
std::optional<QAbstractItemView::CursorAction> MessageListView::movementOf(int key) {
  switch (key) {
    case Qt::Key_Up: return QAbstractItemView::MoveUp;
    case Qt::Key_Down: return QAbstractItemView::MoveDown;
    case Qt::Key_Home: return QAbstractItemView::MoveHome;
    case Qt::Key_End: return QAbstractItemView::MoveEnd;
    case Qt::Key_PageUp: return QAbstractItemView::MovePageUp;
    case Qt::Key_PageDown: return QAbstractItemView::MovePageDown;
    default: return std::nullopt;
  }
}

MessageListView::MessageListView(QWidget* parent) : QTreeView(parent) {
  setObjectName("ListView1");
  setAccessibleName("Message list");
  setRootIsDecorated(false);
  setItemsExpandable(false);
  // Every row is one line high: the view lays out 50,000 rows without asking each.
  setUniformRowHeights(true);
  setAllColumnsShowFocus(true);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setItemDelegate(new MessageListDelegate(this));
  header()->setSectionsClickable(true);
  header()->setSortIndicatorShown(true);
  header()->setSortIndicator(-1, Qt::AscendingOrder);
  header()->setStretchLastSection(false);
  connect(header(), &QHeaderView::sectionClicked, this, &MessageListView::onHeaderClicked);
  connect(this, &QAbstractItemView::clicked, this, [this](const QModelIndex& index) { emit rowChosen(index.row()); });
  connect(this, &QAbstractItemView::doubleClicked, this,
          [this](const QModelIndex& index) { emit rowOpened(index.row()); });
}

void MessageListView::keyPressEvent(QKeyEvent* event) {
  const auto movement = movementOf(event->key());
  if (!movement || model() == nullptr) return QTreeView::keyPressEvent(event);
  event->accept();
  const QModelIndex target = moveCursor(*movement, Qt::NoModifier);
  if (!target.isValid()) return;
  // One row stays selected, whatever was selected before.
  selectionModel()->setCurrentIndex(target, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  scrollTo(target);
  emit rowChosen(target.row());
}

void MessageListView::onHeaderClicked(int section) {
  sortOrder_ = sortOrder_ == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
  header()->setSortIndicator(section, sortOrder_);
  emit sortRequested(section, sortOrder_);
}

}  // namespace vonel
