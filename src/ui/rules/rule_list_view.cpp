#include "ui/rules/rule_list_view.h"

#include <QMouseEvent>

namespace vonel {

RuleListView::RuleListView(QWidget* parent) : QListView(parent) {
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::EditKeyPressed);
  setUniformItemSizes(true);
}

bool RuleListView::mayLeaveFor(const QModelIndex& target) const {
  const QModelIndex current = currentIndex();
  if (!target.isValid() || !current.isValid() || target.row() == current.row() || !mayLeaveRow_) return true;
  return mayLeaveRow_();
}

QModelIndex RuleListView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
  const QModelIndex target = QListView::moveCursor(action, modifiers);
  return mayLeaveFor(target) ? target : currentIndex();
}

// A click below the last row would clear the selection while the form still
// shows the rule, so it is ignored.
void RuleListView::mousePressEvent(QMouseEvent* event) {
  const QModelIndex target = indexAt(event->position().toPoint());
  if ((!target.isValid() && currentIndex().isValid()) || !mayLeaveFor(target)) {
    event->accept();
    return;
  }
  QListView::mousePressEvent(event);
}

// Where a typed name leads is known only after the search, so the row is
// checked first; staying on it is then no change.
void RuleListView::keyboardSearch(const QString& search) {
  if (currentIndex().isValid() && mayLeaveRow_ && !mayLeaveRow_()) return;
  QListView::keyboardSearch(search);
}

}  // namespace vonel
