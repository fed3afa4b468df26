#pragma once
// The rule editor's list view: before the user moves to another row (mouse,
// arrow keys or typing a name) it asks whether the row may be left, and stays
// where it is when not. Rows chosen by the program move freely.
#include <QListView>
#include <functional>

namespace vonel {

class RuleListView final : public QListView {
  Q_OBJECT

 public:
  explicit RuleListView(QWidget* parent = nullptr);
  void setLeaveCheck(std::function<bool()> mayLeaveRow) { mayLeaveRow_ = std::move(mayLeaveRow); }

 protected:
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  void mousePressEvent(QMouseEvent* event) override;
  void keyboardSearch(const QString& search) override;

 private:
  bool mayLeaveFor(const QModelIndex& target) const;

  std::function<bool()> mayLeaveRow_;
};

}  // namespace vonel
