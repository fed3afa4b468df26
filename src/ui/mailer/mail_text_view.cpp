#include "ui/mailer/mail_text_view.h"

#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>
#include <vector>

#include "app/qtext.h"
#include "core/text/link_marking.h"
#include "core/text/strings.h"

namespace vonel {
namespace {

// FF0000 in the blue-green-red order colours are kept in: blue.
const QColor kLinkColour(0x00, 0x00, 0xFF);

// The document lays out a paragraph as a whole, in time growing faster than
// its length; longer lines are broken so that a 20 MB line opens at once and
// the rest is laid out while the window goes on.
constexpr std::size_t kLongestParagraph = 2000;

// Where the long lines of a text get a break: after their last blank within
// the limit, else at the limit. Positions in the unbroken text, ascending.
std::vector<std::size_t> paragraphBreaks(std::string_view text) {
  std::vector<std::size_t> breaks;
  std::size_t lineStart = 0;
  while (lineStart < text.size()) {
    const std::size_t lineEnd = std::min(text.find('\n', lineStart), text.size());
    while (lineEnd - lineStart > kLongestParagraph) {
      const std::size_t blank = text.substr(lineStart, kLongestParagraph).rfind(' ');
      lineStart += blank != std::string_view::npos ? blank + 1 : kLongestParagraph;
      breaks.push_back(lineStart);
    }
    lineStart = lineEnd + 1;
  }
  return breaks;
}

std::string withBreaks(std::string_view text, const std::vector<std::size_t>& breaks) {
  std::string broken;
  broken.reserve(text.size() + breaks.size());
  std::size_t from = 0;
  for (const std::size_t at : breaks) {
    broken.append(text, from, at - from).push_back('\n');
    from = at;
  }
  broken.append(text, from);
  return broken;
}

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
  // A word wider than the pane (a pasted blob) breaks at its edge.
  setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
}

void MailTextView::showText(std::string_view text) {
  // A CR LF pair is one position in the document, so it becomes a plain LF
  // first; the links come out the same, as both are stops.
  const std::string lines = text::replaceAll(text, "\r\n", "\n");
  const std::vector<std::size_t> breaks = paragraphBreaks(lines);

  // The text and its marks go into a document with no layout yet, so that
  // it is laid out once, from the top, as it is shown.
  auto* shown = new QTextDocument(this);
  shown->setUndoRedoEnabled(false);
  shown->setDefaultFont(font());
  shown->setDefaultTextOption(document()->defaultTextOption());
  shown->setPlainText(toQString(breaks.empty() ? lines : withBreaks(lines, breaks)));
  markLinks(*shown, lines, breaks);
  setDocument(shown);  // the one shown before goes, as this view owns it
}

void MailTextView::markLinks(QTextDocument& shown, std::string_view text, const std::vector<std::size_t>& breaks) {
  QTextCursor cursor(&shown);
  // In one edit block the cursor skips working out its place on screen, which
  // would lay the text out for each mark.
  cursor.beginEditBlock();
  cursor.select(QTextCursor::Document);
  QTextCharFormat plain;
  plain.setFontUnderline(false);
  plain.setForeground(palette().color(QPalette::ButtonText));
  cursor.mergeCharFormat(plain);

  // A position moves on by one for every break before it.
  const auto startAt = [&](std::size_t at) {
    return static_cast<int>(at + (std::upper_bound(breaks.begin(), breaks.end(), at) - breaks.begin()));
  };
  const auto endAt = [&](std::size_t at) {
    return static_cast<int>(at + (std::lower_bound(breaks.begin(), breaks.end(), at) - breaks.begin()));
  };
  QTextCharFormat link;
  link.setFontUnderline(true);
  link.setForeground(kLinkColour);
  for (const text::LinkSpan& span : text::underlineLinks(text)) {
    cursor.setPosition(startAt(span.start));
    cursor.setPosition(endAt(span.start + span.length), QTextCursor::KeepAnchor);
    cursor.mergeCharFormat(link);
  }
  cursor.endEditBlock();
}

QVariant MailTextView::loadResource(int, const QUrl&) { return {}; }

}  // namespace vonel
