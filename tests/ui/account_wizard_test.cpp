#include "ui/settings/account_wizard.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>
#include <functional>

#include "app/headless_windows.h"
#include "app/mail_controller.h"
#include "app/terminal_password.h"
#include "core/files/file_text.h"
#include "core/settings/accounts.h"

using namespace vonel;

namespace {

// Keeps every box's text, in order.
class RecordingPrompt : public ScriptedPrompt {
 public:
  Answer ask(std::string_view text, Buttons buttons, std::string_view title) override {
    asked.emplace_back(text);
    titles.emplace_back(title);
    return ScriptedPrompt::ask(text, buttons, title);
  }
  std::vector<std::string> asked;
  std::vector<std::string> titles;
};

struct Home {
  QTemporaryDir dir;
  FixedClock clock{text::DateTime{2026, 11, 23, 8, 0, 0}};
  RecordingPrompt prompt;
  AppContext context{clock, prompt, AppInfo{"Vonel", "9.9", "os", "/", path()}};
  std::filesystem::path path() const { return dir.path().toStdString(); }
};

// The windows of a start with a display, as far as the wizard goes.
class WizardWindows : public HeadlessWindows {
 public:
  explicit WizardWindows(AppContext& context) : context_(context) {}
  bool runAccountWizard() override { return vonel::runAccountWizard(context_, nullptr); }
  bool canRunAccountWizard() const override { return true; }

 private:
  AppContext& context_;
};

QLineEdit* field(QWidget& wizard, const char* name) { return wizard.findChild<QLineEdit*>(name); }
QPushButton* button(QWidget& wizard, const char* name) { return wizard.findChild<QPushButton*>(name); }
int page(QWidget& wizard) { return wizard.findChild<QStackedWidget*>()->currentIndex(); }

// Runs `drive` on the wizard once its modal loop runs.
void whenWizardShows(const std::function<void(AccountWizard&)>& drive) {
  QTimer::singleShot(0, [drive] {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (auto* wizard = qobject_cast<AccountWizard*>(window); wizard && wizard->isVisible()) {
        drive(*wizard);
        return;
      }
    }
  });
}

// Types into whatever has the focus, then presses Enter.
void answerByKeyboard(AccountWizard& wizard, const QString& text) {
  QWidget* focus = wizard.focusWidget();
  if (auto* edit = qobject_cast<QLineEdit*>(focus)) edit->clear();
  // keyClicks knows ASCII only; the display name holds a Latin-1 letter.
  for (const QChar c : text) {
    QTest::sendKeyEvent(QTest::Click, focus, Qt::Key(c.toUpper().unicode()), QString(c), Qt::NoModifier);
  }
  QTest::keyClick(wizard.focusWidget(), Qt::Key_Return);
}

const char* const kCancelStart = "If you want the wizard to run again you should exit Vonel,\rdelete the configuration file ";
const char* const kNoAccountYet =
    "Before using this program you will have to set up a mail account. Click the spanner icon on the main menu for "
    "the settings page.";

}  // namespace

class AccountWizardTest : public QObject {
  Q_OBJECT

 private slots:
  void eachMissingAnswerIsRefusedWithItsOwnText() {
    Home home;
    AccountWizard wizard(home.context);
    wizard.show();
    QCOMPARE(wizard.objectName(), QString("frmAccountWizard"));
    button(wizard, "cmdNext")->click();
    const struct {
      const char* name;
      const char* refusal;
      const char* bad;
    } questions[] = {
        {"txtName", "Please specify a user name", "   "},
        {"txtEmail", "Please specify a valid email address, e.g. someone@example.com", "someone.example.com"},
        {"txtPOP3", "Please specify an Inbound Mail Server", ""},
        {"txtSMTP", "Please specify an Outbound Mail Server", ""},
        {"txtUsername", "Please specify the username you log into your mail server with", ""},
        {"txtAccountName", "Please specify a title for this mail account", ""},
    };
    int expectedPage = 1;
    for (const auto& question : questions) {
      QLineEdit* edit = field(wizard, question.name);
      QVERIFY2(edit && edit->isVisible(), question.name);
      QVERIFY2(!edit->accessibleName().isEmpty(), question.name);
      QCOMPARE(button(wizard, "cmdNext")->text(), QString("Next >>"));
      edit->setText(question.bad);
      button(wizard, "cmdNext")->click();
      QCOMPARE(home.prompt.asked.back(), std::string(question.refusal));
      QCOMPARE(home.prompt.titles.back(), std::string("Vonel"));
      QCOMPARE(page(wizard), expectedPage);
      edit->setText("x@y");
      button(wizard, "cmdNext")->click();
      QCOMPARE(page(wizard), ++expectedPage);
    }
    QCOMPARE(home.prompt.asked.size(), std::size(questions));
    QCOMPARE(button(wizard, "cmdNext")->text(), QString("Finish"));
  }

  void backKeepsTheAnswersAndTheTitleStartsAsAccount1() {
    Home home;
    AccountWizard wizard(home.context);
    wizard.show();
    QVERIFY(!button(wizard, "cmdBack")->isEnabled());
    QCOMPARE(field(wizard, "txtAccountName")->text(), QString("Account 1"));
    button(wizard, "cmdNext")->click();
    field(wizard, "txtName")->setText("Zo");
    button(wizard, "cmdNext")->click();
    QCOMPARE(page(wizard), 2);
    button(wizard, "cmdBack")->click();
    QCOMPARE(page(wizard), 1);
    QCOMPARE(field(wizard, "txtName")->text(), QString("Zo"));
    QCOMPARE(wizard.focusWidget(), field(wizard, "txtName"));
    button(wizard, "cmdBack")->click();
    QVERIFY(!button(wizard, "cmdBack")->isEnabled());
    QVERIFY(home.prompt.asked.empty());
  }

  void finishByKeyboardWritesTheFirstSettingsFile() {
    Home home;
    whenWizardShows([](AccountWizard& wizard) {
      QTest::keyClick(wizard.focusWidget(), Qt::Key_Return);
      answerByKeyboard(wizard, QString::fromUtf8("Zo\u00EB Smith"));
      answerByKeyboard(wizard, "zoe@example.org");
      answerByKeyboard(wizard, " pop.example.org ");
      answerByKeyboard(wizard, "smtp.example.org");
      answerByKeyboard(wizard, "zoe");
      QTest::keyClick(wizard.focusWidget(), Qt::Key_Return);  // keeps "Account 1"
      QTest::keyClick(wizard.focusWidget(), Qt::Key_Return);  // Finish
    });
    QVERIFY(runAccountWizard(home.context, nullptr));
    QCOMPARE(files::loadTextFile(home.path() / "Vonel.ini"),
             files::loadTextFile(std::filesystem::path(VONEL_SOURCE_DIR) / "tests/data/settings/first_account.ini"));
    QCOMPARE(QDir(home.dir.path()).entryList(QDir::Files), QStringList{"Vonel.ini"});
    QVERIFY(home.prompt.asked.empty());
  }

  void escapeCancelsWithTheBoxThatNamesTheFile() {
    Home home;
    AccountWizard wizard(home.context);
    wizard.show();
    QTest::keyClick(&wizard, Qt::Key_Escape);
    QCOMPARE(wizard.result(), int(QDialog::Rejected));
    QCOMPARE(home.prompt.asked.size(), std::size_t(1));
    QCOMPARE(home.prompt.asked[0], kCancelStart + (home.path() / "Vonel.ini").string() + "\rand restart Vonel.");
  }

  void cancelAtStartShowsBothBoxesAndStartsWithoutAccount() {
    Home home;
    WizardWindows windows(home.context);
    TerminalPasswordPrompt passwords;
    MailController controller(home.context, windows, passwords);
    whenWizardShows([](AccountWizard& wizard) {
      button(wizard, "cmdNext")->click();
      field(wizard, "txtName")->setText("Zo");
      button(wizard, "cmdCancel")->click();
    });
    QCOMPARE(controller.startup(), StartupResult::Started);
    QCOMPARE(home.prompt.asked.size(), std::size_t(2));
    QVERIFY(home.prompt.asked[0].starts_with(kCancelStart));
    QCOMPARE(home.prompt.asked[1], std::string(kNoAccountYet));
    QCOMPARE(firstAccount(home.context.settings), std::nullopt);
  }

  void screenshotsOfFirstAndLastPage() {
    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (shots.isEmpty()) QSKIP("VONEL_SCREENSHOT_DIR is not set");
    Home home;
    AccountWizard wizard(home.context);
    wizard.show();
    QVERIFY(QTest::qWaitForWindowExposed(&wizard));
    wizard.grab().save(shots + "/account_wizard_first.png");
    button(wizard, "cmdNext")->click();
    wizard.grab().save(shots + "/account_wizard_name.png");
    for (const char* name : {"txtName", "txtEmail", "txtPOP3", "txtSMTP", "txtUsername", "txtAccountName"}) {
      if (field(wizard, name)->text().isEmpty()) field(wizard, name)->setText("me@example.org");
      button(wizard, "cmdNext")->click();
    }
    wizard.grab().save(shots + "/account_wizard_last.png");
  }
};

QTEST_MAIN(AccountWizardTest)
#include "account_wizard_test.moc"
