#include "ui/mailer/preview_field.h"

#include <QBoxLayout>
#include <QLabel>

namespace vonel {

PreviewField::PreviewField(const QString& caption, const QString& valueName, QBoxLayout& layout, int stretch)
    : caption_(new QLabel(caption)), value_(new QLabel) {
  QFont bold = caption_->font();
  bold.setBold(true);
  caption_->setFont(bold);
  caption_->setTextFormat(Qt::PlainText);
  caption_->setBuddy(value_);

  value_->setObjectName(valueName);
  value_->setTextFormat(Qt::PlainText);
  value_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  // A long subject is cut at the pane's edge instead of widening the window.
  value_->setMinimumWidth(1);
  QString name = caption.trimmed();
  if (name.endsWith(':')) name.chop(1);
  value_->setAccessibleName(name);

  layout.addWidget(caption_);
  layout.addWidget(value_, stretch);
}

void PreviewField::setValue(const QString& text) {
  value_->setText(text);
  value_->setAccessibleDescription(text);
}

QString PreviewField::value() const { return value_->text(); }

void PreviewField::setVisible(bool visible) {
  caption_->setVisible(visible);
  value_->setVisible(visible);
}

}  // namespace vonel
