#include "ui/log/log_view.h"

#include <QFontDatabase>

namespace vonel {
namespace {

// Several screens of lines per turn of the event loop, a few milliseconds each.
constexpr int kLinesPerBatch = 100000;

}  // namespace

LogView::LogView(QWidget* parent) : QListView(parent) {
  setUniformItemSizes(true);
  setLayoutMode(Batched);
  setBatchSize(kLinesPerBatch);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(NoEditTriggers);
  setTextElideMode(Qt::ElideNone);
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
}

QSize LogView::characterCell() const {
  return {fontMetrics().horizontalAdvance(QLatin1Char('M')), fontMetrics().height()};
}

void LogView::keepInSight(const QModelIndex& index, ScrollHint hint) {
  pending_ = index;
  hint_ = hint;
  updateGeometries();
  if (pending_.isValid()) viewport()->setUpdatesEnabled(false);
}

// Called again each time a batch of the layout is done.
void LogView::updateGeometries() {
  QListView::updateGeometries();
  if (pending_.isValid() && !visualRect(pending_).isValid()) return;
  if (pending_.isValid()) scrollTo(pending_, hint_);
  pending_ = QPersistentModelIndex();
  viewport()->setUpdatesEnabled(true);
}

}  // namespace vonel
