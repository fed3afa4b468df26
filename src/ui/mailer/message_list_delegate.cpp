#include "ui/mailer/message_list_delegate.h"

#include <QApplication>
#include <QPainter>

namespace vonel {

void MessageListDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  QStyleOptionViewItem cell = option;
  initStyleOption(&cell, index);
  const QString text = cell.text;
  // The style draws the background, the selection, the focus and the icon; the text follows.
  cell.text.clear();
  const QWidget* widget = cell.widget;
  const QStyle* style = widget != nullptr ? widget->style() : QApplication::style();
  style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, widget);
  if (text.isEmpty()) return;
  const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, widget) + 1;
  const QRect area = cell.rect.adjusted(margin, 0, -margin, 0);
  const bool selected = (cell.state & QStyle::State_Selected) != 0;
  const QPalette::ColorGroup group = (cell.state & QStyle::State_Enabled) == 0  ? QPalette::Disabled
                                     : (cell.state & QStyle::State_Active) != 0 ? QPalette::Active
                                                                                : QPalette::Inactive;
  painter->save();
  painter->setFont(cell.font);
  painter->setPen(cell.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text));
  painter->drawText(area, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                    cell.fontMetrics.elidedText(text, Qt::ElideRight, area.width()));
  painter->restore();
}

}  // namespace vonel
