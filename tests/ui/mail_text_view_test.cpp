#include <QTextBlock>
#include <QtTest>

#include "ui/mailer/mail_text_view.h"

using namespace vonel;

namespace {

// Each underlined stretch with where it starts in the document.
QList<QPair<int, QString>> marks(const MailTextView& view) {
  QList<QPair<int, QString>> found;
  for (QTextBlock block = view.document()->begin(); block.isValid(); block = block.next()) {
    for (auto it = block.begin(); !it.atEnd(); ++it) {
      if (!it.fragment().charFormat().fontUnderline()) continue;
      // A link cut by a paragraph break continues the one before.
      if (!found.isEmpty() && found.last().first + found.last().second.size() + 1 == it.fragment().position()) {
        found.last().second += it.fragment().text();
      } else {
        found.append({it.fragment().position(), it.fragment().text()});
      }
    }
  }
  return found;
}

}  // namespace

class MailTextViewTest : public QObject {
  Q_OBJECT

 private slots:
  void aLineEndIsOnePositionAndTheMarksFollowIt() {
    MailTextView view;
    view.showText("one\r\ntwo www.a.org\r\nthree b@c.de");
    QCOMPARE(view.toPlainText(), QString("one\ntwo www.a.org\nthree b@c.de"));
    QCOMPARE(marks(view), (QList<QPair<int, QString>>{{8, "www.a.org"}, {24, "b@c.de"}}));
    QCOMPARE(view.textCursor().position(), 0);
  }

  void aVeryLongLineIsBrokenIntoParagraphsWithItsMarksInPlace() {
    // Words of ten characters: the line breaks after a blank before each 2000.
    std::string line;
    while (line.size() < 9000) line += "wordword, ";
    line.replace(1990, 20, "x www.long-link.org ");  // starts the second paragraph
    line += "and mail ann@example.com";
    MailTextView view;
    view.showText(line);
    QVERIFY(view.document()->blockCount() > 4);
    for (QTextBlock block = view.document()->begin(); block.isValid(); block = block.next()) {
      QVERIFY(block.length() <= 2001);
    }
    QString joined = view.toPlainText();
    joined.remove('\n');
    QCOMPARE(joined, QString::fromStdString(line));
    const auto found = marks(view);
    QCOMPARE(found.size(), 2);
    QCOMPARE(found.at(0), (QPair<int, QString>{1993, "www.long-link.org"}));
    QCOMPARE(found.at(1).second, QString("ann@example.com"));

    // No blank at all: broken every 2000 characters, here inside a link.
    view.showText(std::string(1990, 'x') + "(http://cut.example/path)" + std::string(8000, 'x') + " http://end.example");
    QCOMPARE(view.document()->blockCount(), 6);
    QCOMPARE(marks(view), (QList<QPair<int, QString>>{{1991, "http://cut.example/path"}, {10016 + 5, "http://end.example"}}));
  }
};

QTEST_MAIN(MailTextViewTest)
#include "mail_text_view_test.moc"
