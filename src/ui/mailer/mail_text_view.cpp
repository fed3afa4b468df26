#include "ui/mailer/mail_text_view.h"

#include <QTextCursor>

#include "app/qtext.h"
#include "core/text/link_marking.h"
#include "core/text/strings.h"

namespace vonel {
namespace {

// FF0000 in the blue-green-red order colours are kept in: blue.
const QColor kLinkColour(0x00, 0x00, 0xFF);

}  // namespace

MailTextView::MailTextView(QWidget* parent) : QTextBrowser(parent) {
  setObjectName("txtMessage");
  setAccessibleName("Message text");
  setOpenLinks(false);
  setOpenExternalLinks(false);
  setUndoRedoEnabled(false);
  // A caret the keys can move and select with; Tab goes on to the next control.
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setTabChangesFocus(true);
}

void MailTextView::showText(std::string_view text) {
  // The document holds one position per line end; a CR LF pair becomes a
  // plain LF first so that the marks' byte positions are its positions too.
  const std::string lines = text::replaceAll(text, "\r\n", "\n");
  setPlainText(toQString(lines));
  underlineLinks(lines);
}

void MailTextView::underlineLinks(std::string_view text) {
  QTextCursor cursor(document());
  cursor.select(QTextCursor::Document);
  QTextCharFormat plain;
  plain.setFontUnderline(false);
  plain.setForeground(palette().color(QPalette::ButtonText));
  cursor.mergeCharFormat(plain);

  QTextCharFormat link;
  link.setFontUnderline(true);
  link.setForeground(kLinkColour);
  for (const text::LinkSpan& span : text::underlineLinks(text)) {
    cursor.setPosition(static_cast<int>(span.start));
    cursor.setPosition(static_cast<int>(span.start + span.length), QTextCursor::KeepAnchor);
    cursor.mergeCharFormat(link);
  }
  cursor.setPosition(0);
  setTextCursor(cursor);
}

QVariant MailTextView::loadResource(int, const QUrl&) { return {}; }

}  // namespace vonel
