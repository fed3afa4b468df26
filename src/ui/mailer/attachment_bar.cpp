#include "ui/mailer/attachment_bar.h"

#include <QMenu>

#include "app/qtext.h"
#include "core/message/message.h"
#include "core/text/numbers.h"
#include "ui/pictures.h"

namespace vonel {

std::vector<AttachmentEntry> attachmentEntries(const message::Message& message) {
  std::vector<AttachmentEntry> entries;
  for (std::size_t part = 1; part <= message.mimePartCount(); ++part) {
    const message::MimePart& mime = message.mimePart(part);
    if (mime.filename.empty()) continue;
    const double kilobytes = text::roundHalfEven(static_cast<double>(mime.size) / 1024.0, 1);
    entries.push_back({static_cast<int>(part), mime.filename,
                       mime.filename + " (" + text::plainText(kilobytes) + "kb)"});
  }
  return entries;
}

AttachmentBar::AttachmentBar(QWidget* parent) : QToolBar(parent), menu_(new QMenu(this)) {
  setObjectName("Toolbar2");
  setAccessibleName("Attachments");
  setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  setIconSize(QSize(16, 16));
  setMovable(false);
  setFloatable(false);
  menu_->setObjectName("mnuAttach");
  QAction* saveAll = menu_->addAction("Save all attachments");
  connect(saveAll, &QAction::triggered, this, &AttachmentBar::saveAllChosen);
  setContextMenuPolicy(Qt::CustomContextMenu);
  connect(this, &QWidget::customContextMenuRequested, this, &AttachmentBar::onContextMenu);
  hide();
}

void AttachmentBar::showAttachments(const std::vector<AttachmentEntry>& entries) {
  clearAttachments();
  for (const AttachmentEntry& entry : entries) {
    QAction* button = addAction(pictures::icon("attachment"), toQString(entry.name));
    QAction* line = menu_->addAction(toQString(entry.menuLine));
    const int part = entry.part;
    for (QAction* action : {button, line}) {
      connect(action, &QAction::triggered, this, [this, part] { emit attachmentChosen(part); });
    }
    // Bar buttons take no focus of their own unless asked to.
    if (QWidget* widget = widgetForAction(button)) widget->setFocusPolicy(Qt::TabFocus);
  }
  setVisible(!entries.empty());
}

void AttachmentBar::clearAttachments() {
  // The bar owns its buttons' actions; clear() alone would keep them.
  const QList<QAction*> buttons = actions();
  qDeleteAll(buttons);
  const QList<QAction*> lines = menu_->actions();
  for (qsizetype i = 1; i < lines.size(); ++i) {
    menu_->removeAction(lines[i]);
    delete lines[i];
  }
  hide();
}

void AttachmentBar::onContextMenu(const QPoint& at) { menu_->popup(mapToGlobal(at)); }

}  // namespace vonel
