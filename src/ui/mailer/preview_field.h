#pragma once
// One line item of the preview's header or footer: a bold caption and its
// value as plain text, so that mark-up in a subject shows as the characters
// it is made of. The value can be reached and selected from the keyboard.
#include <QString>

class QBoxLayout;
class QLabel;
class QWidget;

namespace vonel {

class PreviewField {
 public:
  // Adds both labels to the layout; `valueName` is the value's objectName.
  PreviewField(const QString& caption, const QString& valueName, QBoxLayout& layout, int stretch);

  void setValue(const QString& text);
  QString value() const;
  void setVisible(bool visible);
  QLabel* valueLabel() const { return value_; }

 private:
  QLabel* caption_;
  QLabel* value_;
};

}  // namespace vonel
