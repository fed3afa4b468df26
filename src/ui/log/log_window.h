#pragma once
// The log window: the present log file, newest lines in view, read again on
// Refresh. The file may be any size; see LogLinesModel.
#include <QMainWindow>
#include <QPersistentModelIndex>

namespace vonel {

class AppContext;
class LogLinesModel;
class LogView;

class LogWindow final : public QMainWindow {
  Q_OBJECT

 public:
  explicit LogWindow(AppContext& context, QWidget* parent = nullptr);

  // mnuRefresh: reads the file again and shows its end.
  void refresh();

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void onCopy();
  void onRowsAboutToBeInserted();
  void onRowsInserted();

  AppContext& context_;
  LogLinesModel* model_;
  LogView* view_;
  // Lines read late arrive above the shown ones; the view keeps its place.
  QPersistentModelIndex topBeforeInsert_;
  bool atEndBeforeInsert_ = false;
};

// Opens a log window of its own over `parent` (so it stays usable beside a
// modal window that opened it); it deletes itself when closed.
LogWindow* showLogWindow(AppContext& context, QWidget* parent);

}  // namespace vonel
