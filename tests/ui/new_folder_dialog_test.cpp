#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include "core/context/app_context.h"
#include "support/app_home.h"
#include "ui/mailer/new_folder_dialog.h"

using namespace vonel;

namespace {

// A store with a folder below the inbox.
struct Home : testing::AppHome {
  Home() {
    for (const char* folder : {"Inbox/Work", "Outbox", "Sent Items"}) storeFolder(folder);
  }
};

template <typename T>
T* child(const QWidget& window, const QString& name) {
  T* found = window.findChild<T*>(name);
  if (!found) qFatal("no control %s", qPrintable(name));
  return found;
}

QStringList items(const QComboBox& combo) {
  QStringList all;
  for (int i = 0; i < combo.count(); ++i) all << combo.itemText(i);
  return all;
}

// Types the name, picks the parent and presses OK.
void submit(NewFolderDialog& dialog, const QString& name, const QString& parent) {
  child<QLineEdit>(dialog, "txtNewFolder")->setText(name);
  auto* parents = child<QComboBox>(dialog, "cmbParents");
  parents->setCurrentIndex(parents->findText(parent));
  QTest::mouseClick(child<QPushButton>(dialog, "cmdOK"), Qt::LeftButton);
}

}  // namespace

class NewFolderDialogTest : public QObject {
  Q_OBJECT

 private slots:
  void parentsStartWithTheRootAndProposeTheSelectedNode() {
    Home home;
    NewFolderDialog dialog(home.context, "inbox\\work");
    QCOMPARE(dialog.windowTitle(), QString("New Folder"));
    auto* parents = child<QComboBox>(dialog, "cmbParents");
    QCOMPARE(items(*parents), (QStringList{"\\", "\\Archive\\", "\\Deleted\\", "\\Inbox\\", "\\Inbox\\Work\\",
                                           "\\Sent Items\\", "\\SpamBayes\\", "\\SpamBayes\\BayesOld\\"}));
    QCOMPARE(parents->currentText(), QString("\\Inbox\\Work\\"));
    QCOMPARE(child<QComboBox>(NewFolderDialog(home.context, ""), "cmbParents")->currentText(),
             QString("\\Inbox\\"));
    QCOMPARE(child<QComboBox>(NewFolderDialog(home.context, "\\"), "cmbParents")->currentText(), QString("\\"));
    QCOMPARE(child<QComboBox>(NewFolderDialog(home.context, "\\Gone\\"), "cmbParents")->currentText(),
             QString("\\Inbox\\"));
  }

  void anEmptyOrTakenNameIsRefusedAndTheDialogStays() {
    Home home;
    NewFolderDialog dialog(home.context, "");
    dialog.show();
    submit(dialog, " ?!* ", "\\");
    QCOMPARE(home.prompt.lastQuestion, std::string("Please enter a folder name"));
    QCOMPARE(child<QLineEdit>(dialog, "txtNewFolder")->text(), QString());
    QVERIFY(dialog.isVisible());

    submit(dialog, "WORK!", "\\Inbox\\");
    QCOMPARE(home.prompt.lastQuestion, std::string("There's already a folder called WORK.  Please try again."));
    QCOMPARE(child<QLineEdit>(dialog, "txtNewFolder")->text(), QString("WORK"));
    submit(dialog, "sent items", "\\");
    QCOMPARE(home.prompt.lastQuestion, std::string("There's already a folder called sent items.  Please try again."));
    QCOMPARE(home.prompt.questions, 3);
    QVERIFY(dialog.isVisible());
    QVERIFY(dialog.madeFolder().empty());
  }

  void aGoodNameMakesTheFolderUnderTheParentAndCloses() {
    Home home;
    NewFolderDialog dialog(home.context, "");
    dialog.show();
    submit(dialog, "Tax: 2026/27", "\\Inbox\\Work\\");
    QCOMPARE(home.prompt.questions, 0);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(!dialog.isVisible());
    QVERIFY(std::filesystem::is_directory(home.root() / "Inbox" / "Work" / "Tax 202627"));
    QCOMPARE(dialog.madeFolder(), std::string("\\Inbox\\Work\\Tax 202627"));

    NewFolderDialog atRoot(home.context, "\\");
    atRoot.show();
    submit(atRoot, "Lists", "\\");
    QVERIFY(std::filesystem::is_directory(home.root() / "Lists"));
    QCOMPARE(atRoot.madeFolder(), std::string("\\Lists"));
  }

  void keysAloneFillAndConfirm() {
    Home home;
    NewFolderDialog dialog(home.context, "");
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCOMPARE(dialog.focusWidget(), child<QWidget>(dialog, "txtNewFolder"));
    QTest::keyClicks(dialog.focusWidget(), "Receipts");
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    QCOMPARE(dialog.focusWidget(), child<QWidget>(dialog, "cmbParents"));
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Home);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    QVERIFY(std::filesystem::is_directory(home.root() / "Receipts"));
    QList<QWidget*> labelled;
    for (const QLabel* label : dialog.findChildren<QLabel*>()) labelled << label->buddy();
    for (const char* name : {"txtNewFolder", "cmbParents"}) QVERIFY(labelled.contains(child<QWidget>(dialog, name)));
  }

  void screenshot() {
    const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
    if (shots.isEmpty()) QSKIP("VONEL_SCREENSHOT_DIR is not set");
    Home home;
    NewFolderDialog dialog(home.context, "inbox\\work");
    child<QLineEdit>(dialog, "txtNewFolder")->setText("Receipts");
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    dialog.grab().save(shots + "/preview-new-folder.png");
  }
};

QTEST_MAIN(NewFolderDialogTest)
#include "new_folder_dialog_test.moc"
