#include "ui/log/log_window.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMenuBar>
#include <QScrollBar>
#include <QTime>
#include <algorithm>

#include "app/qtext.h"
#include "core/context/app_context.h"
#include "ui/log/log_lines_model.h"
#include "ui/log/log_view.h"

namespace vonel {

LogWindow::LogWindow(AppContext& context, QWidget* parent)
    : QMainWindow(parent), context_(context), model_(new LogLinesModel(this)), view_(new LogView(this)) {
  setObjectName("frmLog");

  view_->setObjectName("txtLog");
  view_->setAccessibleName("Log");
  model_->setCharacterCell(view_->characterCell());
  view_->setModel(model_);
  setCentralWidget(view_);

  auto* refreshAction = menuBar()->addAction("&Refresh");
  refreshAction->setObjectName("mnuRefresh");
  refreshAction->setShortcut(QKeySequence::Refresh);
  connect(refreshAction, &QAction::triggered, this, &LogWindow::refresh);

  // The view's own copy takes the current line only.
  view_->installEventFilter(this);

  connect(model_, &QAbstractItemModel::rowsAboutToBeInserted, this, &LogWindow::onRowsAboutToBeInserted);
  connect(model_, &QAbstractItemModel::rowsInserted, this, &LogWindow::onRowsInserted);

  resize(720, 480);
  refresh();
}

void LogWindow::refresh() {
  context_.log.writeActionsToLog();
  const auto now = context_.clock.now();
  setWindowTitle("Log file as of " + QTime(now.hour, now.minute, now.second).toString("HH:mm:ss"));
  model_->open(QString::fromStdString(context_.log.currentLogFilename().string()));
  const int rows = model_->rowCount();
  if (rows == 0) return;
  const QModelIndex last = model_->index(rows - 1);
  view_->selectionModel()->setCurrentIndex(last, QItemSelectionModel::NoUpdate);
  view_->keepInSight(last, QAbstractItemView::PositionAtBottom);
}

bool LogWindow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == view_ && event->type() == QEvent::KeyPress &&
      static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
    onCopy();
    return true;
  }
  return QMainWindow::eventFilter(watched, event);
}

void LogWindow::onCopy() {
  QModelIndexList rows = view_->selectionModel()->selectedRows();
  if (rows.isEmpty()) return;
  std::sort(rows.begin(), rows.end());
  QString text;
  for (const QModelIndex& row : rows) text += toQString(model_->line(row.row())) + '\n';
  QApplication::clipboard()->setText(text);
}

void LogWindow::onRowsAboutToBeInserted() {
  const QScrollBar* bar = view_->verticalScrollBar();
  atEndBeforeInsert_ = bar->value() == bar->maximum();
  topBeforeInsert_ = view_->indexAt(QPoint(1, 1));
}

void LogWindow::onRowsInserted() {
  if (atEndBeforeInsert_) {
    view_->keepInSight(model_->index(model_->rowCount() - 1), QAbstractItemView::PositionAtBottom);
  } else if (topBeforeInsert_.isValid()) {
    view_->keepInSight(topBeforeInsert_, QAbstractItemView::PositionAtTop);
  }
}

LogWindow* showLogWindow(AppContext& context, QWidget* parent) {
  auto* window = new LogWindow(context, parent);
  window->setAttribute(Qt::WA_DeleteOnClose);
  window->show();
  return window;
}

}  // namespace vonel
