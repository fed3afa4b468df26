#include <QLabel>
#include <QMenu>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QToolBar>
#include <QToolButton>
#include <QtTest>

#include "core/context/app_context.h"
#include "core/message/message.h"
#include "ui/mailer/mail_text_view.h"
#include "support/app_home.h"
#include "ui/mailer/message_preview.h"

using namespace vonel;

namespace {

using Home = testing::AppHome;

std::string mail(const std::string& headers, const std::string& body) {
  return "From: Ann Example <ann@example.com>\r\nTo: Bob <BOB@Example.org>\r\nSubject: Hello\r\n" + headers +
         "\r\n" + body;
}

std::string withAttachments() {
  const std::string half(1536, 'A');  // 1.5 kilobytes as it stands in the file
  return mail("MIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=\"XX\"\r\n",
              "--XX\r\nContent-Type: text/plain\r\n\r\nSee http://example.com/report, or mail ann@example.com."
              "\r\n\r\n--XX\r\nContent-Type: application/pdf; name=\"report.pdf\"\r\n"
              "Content-Transfer-Encoding: base64\r\nContent-Disposition: attachment; filename=\"report.pdf\"\r\n\r\n" +
                  half + "\r\n--XX\r\nContent-Type: text/plain; name=\"notes.txt\"\r\n"
                         "Content-Disposition: attachment; filename=\"notes.txt\"\r\n\r\nfew words\r\n--XX--\r\n");
}

template <typename T>
T* child(const QWidget& parent, const QString& name) {
  T* found = parent.findChild<T*>(name);
  if (!found) qFatal("no control %s", qPrintable(name));
  return found;
}

QString value(const MessagePreview& preview, const char* name) { return child<QLabel>(preview, name)->text(); }

MailTextView* body(const MessagePreview& preview) { return child<MailTextView>(preview, "txtMessage"); }

// The stretches of the shown body drawn as links: underlined and blue.
QStringList underlined(const MailTextView& view) {
  QStringList links;
  for (QTextBlock block = view.document()->begin(); block.isValid(); block = block.next()) {
    for (auto fragment = block.begin(); !fragment.atEnd(); ++fragment) {
      const QTextCharFormat format = fragment.fragment().charFormat();
      if (!format.fontUnderline()) continue;
      if (format.foreground().color() != QColor(0, 0, 255)) qFatal("a link that is not blue");
      links << fragment.fragment().text();
    }
  }
  return links;
}

QStringList menuLines(const MessagePreview& preview) {
  QStringList lines;
  for (const QAction* action : preview.attachmentMenu()->actions()) lines << action->text();
  return lines;
}

}  // namespace

class MessagePreviewTest : public QObject {
  Q_OBJECT

 private slots:
  void headerShowsAddressesSubjectAndTheirFallbacks() {
    Home home;
    MessagePreview preview(home.context);
    preview.showMessage(home.write("a.eml", mail("CC: Carl <carl@example.net>\r\n", "Hi\r\n")));
    QCOMPARE(value(preview, "lblFrom"), QString("Ann Example <ann@example.com>"));
    QCOMPARE(value(preview, "lblTo"), QString("Bob <BOB@Example.org>"));
    QCOMPARE(value(preview, "lblCC"), QString("Carl <carl@example.net>"));
    QVERIFY(child<QLabel>(preview, "lblCC")->isVisibleTo(&preview));
    QCOMPARE(value(preview, "lblSubject"), QString("Hello"));
    QCOMPARE(child<QWidget>(preview, "picMailHeader")->toolTip(), QString("bob@example.org Cc: Carl <carl@example.net>"));

    const std::string bare =
        "Return-Path: <bounce@example.com>\r\nX-Envelope-To: me@example.org\r\n"
        "Subject: <img src=http://127.0.0.1:1/x><b>bold</b>\r\n\r\nbody\r\n";
    preview.showMessage(home.write("b.eml", bare));
    QCOMPARE(value(preview, "lblFrom"), QString("<bounce@example.com>"));
    QCOMPARE(value(preview, "lblTo"), QString("me@example.org"));
    QVERIFY(!child<QLabel>(preview, "lblCC")->isVisibleTo(&preview));
    QCOMPARE(child<QWidget>(preview, "picMailHeader")->toolTip(), QString("me@example.org"));
    QCOMPARE(value(preview, "lblSubject"), QString("<img src=http://127.0.0.1:1/x><b>bold</b>"));
    for (const char* name : {"lblFrom", "lblTo", "lblSubject", "lblTags"}) {
      QCOMPARE(child<QLabel>(preview, name)->textFormat(), Qt::PlainText);
    }
  }

  void footerShowsTagsOrNone() {
    Home home;
    MessagePreview preview(home.context);
    preview.showMessage(home.write("a.eml", mail("", "Hi\r\n")));
    QCOMPARE(value(preview, "lblTags"), QString("None"));
    QCOMPARE(child<QWidget>(preview, "picMailFooter")->toolTip(), QString("No tags"));
    preview.showMessage(home.write("b.eml", mail("X-Message-Tags: work, <b>urgent</b>\r\n", "Hi\r\n")));
    QCOMPARE(value(preview, "lblTags"), QString("work, <b>urgent</b>"));
    QCOMPARE(child<QWidget>(preview, "picMailFooter")->toolTip(), QString());
  }

  void bodyOpensOnItsFirstLineWithLinksMarked() {
    Home home;
    MessagePreview preview(home.context);
    preview.showMessage(home.write(
        "a.eml", mail("", "\r\n\r\n  Read http://a.example/x?r=https://b.example https://c.example\r\n"
                          "and www.d.example, then write to:ann@example.com, not me@host or @x.org.\r\n")));
    QCOMPARE(body(preview)->toPlainText(),
             QString("Read http://a.example/x?r=https://b.example https://c.example  \n"
                     "and www.d.example, then write to:ann@example.com, not me@host or @x.org."));
    // https: stops at the link http: made, so c.example stays plain; the
    // comma after the www link is left out, the one after the mail address is not.
    QCOMPARE(underlined(*body(preview)),
             (QStringList{"http://a.example/x?r=https://b.example", "www.d.example", "ann@example.com,"}));
    QCOMPARE(body(preview)->textCursor().position(), 0);
  }

  void attachmentsGiveButtonsAndMenuLines() {
    Home home;
    MessagePreview preview(home.context);
    QSignalSpy chosen(&preview, &MessagePreview::attachmentChosen);
    preview.showMessage(home.write("a.eml", withAttachments()));
    auto* bar = child<QToolBar>(preview, "Toolbar2");
    QVERIFY(bar->isVisibleTo(&preview));
    QStringList buttons;
    for (QAction* action : bar->actions()) buttons << action->text();
    QCOMPARE(buttons, (QStringList{"report.pdf", "notes.txt"}));
    QCOMPARE(menuLines(preview), (QStringList{"Save all attachments", "report.pdf (1.5kb)", "notes.txt (0kb)"}));
    QCOMPARE(preview.attachmentMenu()->objectName(), QString("mnuAttach"));

    auto* second = qobject_cast<QToolButton*>(bar->widgetForAction(bar->actions().at(1)));
    QCOMPARE(second->focusPolicy(), Qt::TabFocus);
    second->click();
    preview.attachmentMenu()->actions().at(1)->trigger();
    QCOMPARE(chosen.size(), 2);
    QCOMPARE(chosen.at(0).at(0).toInt(), 3);  // parts: text, report.pdf, notes.txt
    QCOMPARE(chosen.at(1).at(0).toInt(), 2);

    preview.showMessage(home.write("b.eml", mail("", "none here\r\n")));
    QVERIFY(!bar->isVisibleTo(&preview));
    QVERIFY(bar->actions().isEmpty());
    QCOMPARE(menuLines(preview), QStringList{"Save all attachments"});
  }

  void aBigFileShowsReadingFirstAndALaterPreviewWins() {
    Home home;
    MessagePreview preview(home.context);
    const auto big = home.write("big.eml", mail("", std::string(100001, 'x') + "\r\n"));
    const auto small = home.write("small.eml", mail("", "small one\r\n"));
    QString seen;
    QTimer::singleShot(0, &preview, [&] {
      const auto* hider = child<QLabel>(preview, "txtHider");
      if (hider->isVisibleTo(&preview)) seen = hider->text();
    });
    preview.showMessage(big);
    QCOMPARE(seen, QString("Reading message ..."));
    QVERIFY(body(preview)->toPlainText().startsWith("xxx"));
    QVERIFY(body(preview)->isVisibleTo(&preview));

    QTimer::singleShot(0, &preview, [&] { preview.showMessage(small); });
    preview.showMessage(big);
    QCOMPARE(body(preview)->toPlainText(), QString("small one"));
    QCOMPARE(QString::fromStdString(std::filesystem::path(preview.current()->filename()).filename().string()).toLower(), QString("small.eml"));
  }

  void aFileGoneBeforeThePreviewGivesAnEmptyOneAndALogLine() {
    Home home;
    MessagePreview preview(home.context);
    preview.showMessage(home.write("a.eml", withAttachments()));
    QVERIFY(preview.current());
    const auto gone = home.write("gone.eml", mail("", "soon gone\r\n"));
    std::filesystem::remove(gone);
    preview.showMessage(gone);
    QCOMPARE(preview.current(), nullptr);
    QCOMPARE(value(preview, "lblFrom"), QString());
    QCOMPARE(body(preview)->toPlainText(), QString());
    QVERIFY(!child<QToolBar>(preview, "Toolbar2")->isVisibleTo(&preview));
    QVERIFY(QString::fromStdString(home.context.log.currentAction()).contains("gone.eml"));
  }

  void hostileHtmlFetchesAndRunsNothing() {
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const std::string url = "http://127.0.0.1:" + std::to_string(server.serverPort());
    Home home;
    MessagePreview preview(home.context);
    preview.resize(600, 400);
    preview.show();
    QVERIFY(QTest::qWaitForWindowExposed(&preview));
    const std::string html =
        "<html><head><link rel=stylesheet href=\"" + url + "/css\"><script>document.write('ran')</script></head>"
        "<body background=\"" + url + "/bg\"><img src=\"" + url + "/x\"><br><a href=\"file:///etc/passwd\">"
        "local</a><br><iframe src=\"" + url + "/frame\"></iframe>text</body></html>";
    preview.showMessage(home.write("h.eml", mail("Content-Type: text/html\r\n", html)));
    preview.showMessage(home.write("p.eml", mail("", "<img src=\"" + url + "/plain\"> shown as text\r\n")));
    QVERIFY(body(preview)->toPlainText().startsWith("<img src=\""));
    QVERIFY(body(preview)->loadResource(QTextDocument::ImageResource, QUrl(QString::fromStdString(url + "/x")))
                .isNull());
    body(preview)->setSource(QUrl(QString::fromStdString(url + "/page")));
    QTest::qWait(300);
    QVERIFY(!server.hasPendingConnections());
  }

  void everyControlHasANameAndTheMenuKeyOpensTheAttachments() {
    Home home;
    MessagePreview preview(home.context);
    preview.showMessage(home.write("a.eml", withAttachments()));
    for (const char* name : {"picMailHeader", "txtMessage", "txtHider", "picMailFooter", "Toolbar2"}) {
      QVERIFY2(!child<QWidget>(preview, name)->accessibleName().isEmpty(), name);
    }
    QCOMPARE(child<QLabel>(preview, "lblSubject")->accessibleName(), QString("Subject"));
    // The menu key on an attachment button opens mnuAttach.
    auto* bar = child<QToolBar>(preview, "Toolbar2");
    QWidget* button = bar->widgetForAction(bar->actions().at(0));
    QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(2, 2), button->mapToGlobal(QPoint(2, 2)));
    QApplication::sendEvent(button, &menuKey);
    QVERIFY(preview.attachmentMenu()->isVisible());
    preview.attachmentMenu()->close();
  }

  void screenshotWithLinksAndTwoAttachments() {
    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (shots.isEmpty()) QSKIP("VONEL_SCREENSHOT_DIR is not set");
    Home home;
    MessagePreview preview(home.context);
    preview.resize(860, 360);
    preview.show();
    std::string message = withAttachments();
    message.insert(message.find("Subject: ") + 9, "Quarterly report with a subject long enough to reach the edge: ");
    message.insert(0, "CC: Carl <carl@example.net>, Dora <dora@example.net>\r\n");
    const std::string text = "See http://example.com/report, or mail ann@example.com.";
    message.replace(message.find(text), text.size(),
                    "Hello Bob,\r\n\r\nthe report is attached; the figures are also on\r\n"
                    "https://reports.example.com/q3 and www.example.org/archive, as before.\r\n"
                    "Questions to ann@example.com, not to me@localhost.\r\n\r\nAnn");
    preview.showMessage(home.write("a.eml", message));
    QVERIFY(QTest::qWaitForWindowExposed(&preview));
    preview.grab().save(shots + "/preview-links-attachments.png");
  }
};

QTEST_MAIN(MessagePreviewTest)
#include "message_preview_test.moc"
