#pragma once
// Paints a message list cell with one line of text cut off at the right,
// which is all a row of the list ever holds: it spares the general text
// layout that a cell of any shape needs, the larger part of a frame's cost.
#include <QStyledItemDelegate>

namespace vonel {

class MessageListDelegate final : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace vonel
