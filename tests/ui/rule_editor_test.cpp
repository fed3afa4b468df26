#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>
#include <fstream>
#include <sstream>

#include "core/context/app_context.h"
#include "core/rules/rule_engine.h"
#include "ui/rules/rule_editor.h"

using namespace vonel;

namespace {

constexpr std::string_view kFiveServerRules =
    "Filtername, Cheap pills\r\nFilterField, Subject:\r\nFilterComparison, cnt\r\nFilterString, viagra\r\n"
    "FilterField, From:\r\nFilterComparison, !cnt\r\nFilterString, friend@example.com\r\n"
    "FilterAction, 100\r\nFilterDest, \r\nFilterStop, -1\r\nFilter_Category,  0 \r\n"
    "Filtername, Spam\r\nFilterField, X-Spam-Tests-Failed:\r\nFilterComparison, cnt\r\nFilterString, BAYES\r\n"
    "FilterAction, 200\r\nFilterDest, \r\nFilterStop, 0\r\nFilter_Category,  0 \r\n"
    "Filtername, Friends\r\nFilterField, From:\r\nFilterComparison, cnt\r\nFilterString, @example.org\r\n"
    "FilterAction, 400\r\nFilterDest, \r\nFilterStop, -1\r\nFilter_Category,  1 \r\n"
    "Filtername, Lottery winners\r\nFilterField, Subject:\r\nFilterComparison, cnt\r\nFilterString, you have won\r\n"
    "FilterField, All Headers\r\nFilterComparison, cnt\r\nFilterString, lottery\r\n"
    "FilterAction, 100\r\nFilterDest, \r\nFilterStop, 0\r\nFilter_Category,  0 \r\n"
    "Filtername, Mailing list digests\r\nFilterField, To:\r\nFilterComparison, cnt\r\nFilterString, digest@\r\n"
    "FilterAction, 200\r\nFilterDest, \r\nFilterStop, 0\r\nFilter_Category,  0 \r\n";

constexpr std::string_view kFiveLocalRules =
    "Filtername, Lists to their folder\r\nFilterField, To:\r\nFilterComparison, cnt\r\nFilterString, list@\r\n"
    "FilterAction, 300\r\nFilterDest, \\Lists\\\r\nFilterStop, 0\r\nFilter_Category,  0 \r\n"
    "Filtername, Invoices\r\nFilterField, Attachment Filenames\r\nFilterComparison, cnt\r\nFilterString, .pdf\r\n"
    "FilterAction, 500\r\nFilterDest, /home/me/Invoices\\\r\nFilterStop, 0\r\nFilter_Category,  0 \r\n"
    "Filtername, Backup report\r\nFilterField, Subject:\r\nFilterComparison, cnt\r\nFilterString, backup\r\n"
    "FilterAction, 600\r\nFilterDest, /home/me/bin/archive-report\r\nFilterStop, 0\r\nFilter_Category,  1 \r\n"
    "Filtername, Family\r\nFilterField, From:\r\nFilterComparison, cnt\r\nFilterString, @family.example\r\n"
    "FilterAction, 700\r\nFilterDest, family\r\nFilterStop, -1\r\nFilter_Category,  0 \r\n"
    "Filtername, Body mentions the project\r\nFilterField, Message Body\r\nFilterComparison, cnt\r\n"
    "FilterString, vonel\r\nFilterAction, 300\r\nFilterDest, \\Inbox\\\r\nFilterStop, 0\r\nFilter_Category,  0 \r\n";

struct Home {
  QTemporaryDir dir;
  const std::filesystem::path home = dir.path().toStdString();
  FixedClock clock{text::DateTime{2026, 11, 23, 8, 5, 9}};
  ScriptedPrompt prompt;
  AppContext context{clock, prompt, AppInfo{"Vonel", "1.2.3", "TestOS 7", "/", home}};
  rules::RuleEngine engine{context};

  explicit Home(std::string_view ruleText = kFiveServerRules, bool local = false) {
    context.folders.readMessageFolder();
    context.folders.readDataFolder();
    std::filesystem::create_directories(context.folders.messageFolderPath / "Lists");
    std::ofstream(ruleFile(local), std::ios::binary) << ruleText;
    engine.reloadFilters(local);
  }
  std::filesystem::path ruleFile(bool local = false) const {
    return context.folders.dataFolderPath / (local ? "LocalRules.txt" : "Rules.txt");
  }
  std::string ruleFileText(bool local = false) const {
    std::ifstream in(ruleFile(local), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }
};

template <typename T>
T* child(const QWidget& window, const QString& name) {
  T* found = window.findChild<T*>(name);
  if (!found) qFatal("no control %s", qPrintable(name));
  return found;
}

QListView* ruleList(const RuleEditor& editor) { return child<QListView>(editor, "ListView1"); }
QLineEdit* nameBox(const RuleEditor& editor) { return child<QLineEdit>(editor, "txtFilterName"); }
void click(const RuleEditor& editor, const char* button) { QTest::mouseClick(child<QPushButton>(editor, button), Qt::LeftButton); }
int currentRow(const RuleEditor& editor) { return ruleList(editor)->currentIndex().row(); }

QStringList shownNames(const RuleEditor& editor) {
  QStringList names;
  const QAbstractItemModel* model = ruleList(editor)->model();
  for (int row = 0; row < model->rowCount(); ++row) names << model->index(row, 0).data().toString();
  return names;
}

std::vector<std::string> engineNames(const rules::RuleEngine& engine) {
  std::vector<std::string> names;
  for (const rules::FilterRule& rule : engine.rules()) names.push_back(rule.filterName);
  return names;
}

// Fills condition row `i` as a user would: tick it, choose the field, type the text.
void fillCondition(const RuleEditor& editor, int i, const QString& field, int comparison, const QString& text) {
  auto* on = child<QCheckBox>(editor, QString("chkOn_%1").arg(i));
  if (!on->isChecked()) QTest::mouseClick(on, Qt::LeftButton, {}, QPoint(4, on->height() / 2));
  auto* fieldBox = child<QComboBox>(editor, QString("cmbField_%1").arg(i));
  fieldBox->setCurrentIndex(fieldBox->findText(field));
  child<QComboBox>(editor, QString("cmbComparison_%1").arg(i))->setCurrentIndex(comparison);
  auto* textBox = child<QLineEdit>(editor, QString("txtText_%1").arg(i));
  textBox->clear();
  QTest::keyClicks(textBox, text);
}

void typeName(const RuleEditor& editor, const QString& name) {
  nameBox(editor)->clear();
  QTest::keyClicks(nameBox(editor), name);
}

void saveShot(QWidget& window, const QString& file) {
  const QString shots = qEnvironmentVariable("VONEL_SCREENSHOT_DIR");
  if (shots.isEmpty()) return;
  window.show();
  QCoreApplication::processEvents();
  QVERIFY(window.grab().save(shots + "/" + file));
}

}  // namespace

class RuleEditorTest : public QObject {
  Q_OBJECT

 private slots:
  void offersTheServerSetItsFieldsActionsAndTexts() {
    Home home;
    RuleEditor editor(home.context, home.engine, false);
    QCOMPARE(editor.objectName(), QString("frmFilters"));
    QCOMPARE(editor.windowTitle(), QString("Filters"));
    QVERIFY(editor.findChild<QLabel*>("lblHeading")->text() == "These filters will delete spam based on header fields");
    QCOMPARE(child<QComboBox>(editor, "cmbField_3")->count(), 9);
    auto* actions = child<QComboBox>(editor, "cmbWhenMatched");
    QCOMPARE(actions->count(), 3);
    QCOMPARE(actions->itemText(2), QString("Allow download of message"));
    QCOMPARE(actions->itemData(2).toString(), QString("400"));
    QCOMPARE(child<QPushButton>(editor, "cmdUpdate")->text(), QString("Save Filter"));
    QCOMPARE(child<QPushButton>(editor, "cmdImportFilters")->toolTip(),
             QString("You can only import a Rules file in the correct format"));
    QCOMPARE(child<QCheckBox>(editor, "chkStopProcessing")->text(), QString("Don't process subsequent rules"));
    for (const char* move : {"cmdUp", "cmdUp10", "cmdDown", "cmdDown10", "cmdBottom"}) {
      QVERIFY(!child<QPushButton>(editor, move)->isEnabled());
    }
    QVERIFY(child<QPushButton>(editor, "cmdTop")->isEnabled());

    // The first rule is shown: two conditions, stop ticked, rows 3 and 4 off.
    QCOMPARE(nameBox(editor)->text(), QString("Cheap pills"));
    QCOMPARE(child<QComboBox>(editor, "cmbComparison_1")->currentText(), QString("Doesn't Contain"));
    QVERIFY(child<QCheckBox>(editor, "chkStopProcessing")->isChecked());
    QVERIFY(!child<QComboBox>(editor, "cmbField_2")->isEnabled());
    QVERIFY(!child<QComboBox>(editor, "cmbMailFolders")->isVisibleTo(&editor));
    QVERIFY(!child<QLineEdit>(editor, "txtDestFolder")->isVisibleTo(&editor));

    // Every control a user reaches has a name on the accessibility bus.
    QSet<const QWidget*> labelled;
    for (const QLabel* label : editor.findChildren<QLabel*>()) labelled.insert(label->buddy());
    for (const QWidget* control : editor.findChildren<QWidget*>()) {
      if (!qobject_cast<const QComboBox*>(control) && !qobject_cast<const QLineEdit*>(control) &&
          !qobject_cast<const QAbstractButton*>(control) && !qobject_cast<const QAbstractItemView*>(control)) {
        continue;
      }
      if (qobject_cast<const QLineEdit*>(control) && qobject_cast<const QComboBox*>(control->parentWidget())) continue;
      const auto* button = qobject_cast<const QAbstractButton*>(control);
      const bool named = labelled.contains(control) || !control->accessibleName().isEmpty() ||
                         (button && !button->text().isEmpty());
      QVERIFY2(named, qPrintable(control->objectName()));
      QVERIFY2(control->focusPolicy() & Qt::TabFocus, qPrintable(control->objectName()));
    }
  }

  void offersTheLocalSetFoldersAndShowsTheDestinationOfEachAction() {
    Home home(kFiveLocalRules, true);
    RuleEditor editor(home.context, home.engine, true);
    QCOMPARE(editor.findChild<QLabel*>("lblHeading")->text(),
             QString("These filters will move inbound messages to selected folders"));
    QCOMPARE(child<QComboBox>(editor, "cmbField_0")->count(), 11);
    auto* actions = child<QComboBox>(editor, "cmbWhenMatched");
    QCOMPARE(actions->itemData(0).toString(), QString("300"));
    QCOMPARE(actions->itemData(3).toString(), QString("700"));
    auto* folders = child<QComboBox>(editor, "cmbMailFolders");
    QVERIFY(folders->findText("\\Inbox\\") >= 0);
    QCOMPARE(folders->currentText(), QString("\\Lists\\"));
    QVERIFY(folders->isVisibleTo(&editor));

    QTest::keyClick(ruleList(editor), Qt::Key_Down);
    QCOMPARE(nameBox(editor)->text(), QString("Invoices"));
    QVERIFY(!folders->isVisibleTo(&editor));
    QCOMPARE(child<QLineEdit>(editor, "txtDestFolder")->text(), QString("/home/me/Invoices\\"));
    QCOMPARE(child<QComboBox>(editor, "cmbField_0")->currentText(), QString("Attachment Filenames"));
  }

  void newNameAppendsAndTheSameNameInOtherCaseReplacesInPlace() {
    Home home;
    RuleEditor editor(home.context, home.engine, false);
    typeName(editor, "Casino");
    fillCondition(editor, 2, "Subject:", 0, "casino");
    click(editor, "cmdUpdate");
    QCOMPARE(shownNames(editor).size(), 6);
    QCOMPARE(currentRow(editor), 5);
    QCOMPARE(home.engine.rules().back().filterName, std::string("Casino"));
    QCOMPARE(home.engine.rules().back().fields(1), std::string("Subject:"));

    typeName(editor, "SPAM");
    click(editor, "cmdUpdate");
    QCOMPARE(shownNames(editor), (QStringList{"Cheap pills", "SPAM", "Friends", "Lottery winners",
                                              "Mailing list digests", "Casino"}));
    QCOMPARE(currentRow(editor), 1);
    QCOMPARE(home.engine.rules()[1].strings(3), std::string("casino"));
    QCOMPARE(home.prompt.questions, 0);
  }

  void copyArisesAtTheNextSave() {
    Home home;
    RuleEditor editor(home.context, home.engine, false);
    QTest::keyClick(ruleList(editor), Qt::Key_Down);
    click(editor, "cmdDuplicate");
    QCOMPARE(nameBox(editor)->text(), QString("Copy of Spam"));
    QCOMPARE(shownNames(editor).size(), 5);
    // The copy is stored by the row change away from it.
    QTest::keyClick(ruleList(editor), Qt::Key_Up);
    QCOMPARE(shownNames(editor).size(), 6);
    QCOMPARE(currentRow(editor), 0);
    const rules::FilterRule& copy = home.engine.rules().back();
    QCOMPARE(copy.filterName, std::string("Copy of Spam"));
    QCOMPARE(copy.strings(1), std::string("BAYES"));
    QCOMPARE(copy.action, std::string("200"));
  }

  void f2RenamesKeepingCommasButNotACaseOnlyChange() {
    Home home;
    RuleEditor editor(home.context, home.engine, false);
    editor.show();
    QListView* list = ruleList(editor);
    list->setFocus();
    const auto renameTo = [&](const QString& name) {
      QTest::keyClick(list, Qt::Key_F2);
      QLineEdit* box = nullptr;
      for (QLineEdit* open : list->viewport()->findChildren<QLineEdit*>()) {
        if (open->isVisible()) box = open;
      }
      QVERIFY(box);
      box->selectAll();
      QTest::keyClicks(box, name);
      QTest::keyClick(box, Qt::Key_Return);  // the delegate commits on a queued call
      QCoreApplication::processEvents();
      QVERIFY(!box->isVisible());
    };
    renameTo("CHEAP PILLS");
    QCOMPARE(home.engine.rules()[0].filterName, std::string("Cheap pills"));
    renameTo("Pills, cheap");
    QCOMPARE(home.engine.rules()[0].filterName, std::string("Pills, cheap"));
    QCOMPARE(nameBox(editor)->text(), QString("Pills, cheap"));
    QCOMPARE(shownNames(editor).size(), 5);
  }

  void moveToTopAsksFirstWhenTheFormChanged() {
    Home home;
    RuleEditor editor(home.context, home.engine, false);
    QTest::keyClick(ruleList(editor), Qt::Key_End);
    QCOMPARE(currentRow(editor), 4);
    click(editor, "cmdUp");
    QCOMPARE(currentRow(editor), 4);

    QTest::keyClicks(child<QLineEdit>(editor, "txtText_0"), "x");
    home.prompt.queue(Answer::No);
    click(editor, "cmdTop");
    QCOMPARE(home.prompt.lastQuestion, std::string("You will lose your changes - are you sure?"));
    QCOMPARE(currentRow(editor), 4);

    click(editor, "cmdTop");  // answered Yes
    QCOMPARE(currentRow(editor), 0);
    QCOMPARE(engineNames(home.engine).front(), std::string("Mailing list digests"));
    QCOMPARE(home.engine.rules().front().strings(1), std::string("digest@"));
    QCOMPARE(child<QLineEdit>(editor, "txtText_0")->text(), QString("digest@"));
    QCOMPARE(shownNames(editor).at(4), QString("Lottery winners"));
  }

  void aTickedEmptyRowBlocksTheRowChange() {
    Home home;
    RuleEditor editor(home.context, home.engine, false);
    editor.show();
    auto* on = child<QCheckBox>(editor, "chkOn_3");
    QTest::mouseClick(on, Qt::LeftButton, {}, QPoint(4, on->height() / 2));
    QVERIFY(child<QLineEdit>(editor, "txtText_3")->isEnabled());

    QTest::keyClick(ruleList(editor), Qt::Key_Down);
    QCOMPARE(home.prompt.lastQuestion,
             std::string("Rule 4 doesn't have anything in the text field. Please deselect this rule, or enter some text."));
    QCOMPARE(currentRow(editor), 0);
    QListView* list = ruleList(editor);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(2, 0)).center());
    QCOMPARE(home.prompt.questions, 2);
    QCOMPARE(currentRow(editor), 0);
    QVERIFY(list->selectionModel()->isRowSelected(0, {}));
    QVERIFY(!list->selectionModel()->isRowSelected(2, {}));
    QCOMPARE(home.engine.rules()[0].ruleCount, std::int16_t{2});
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, QPoint(4, list->viewport()->height() - 2));
    QVERIFY(list->selectionModel()->isRowSelected(0, {}));

    nameBox(editor)->clear();
    click(editor, "cmdSaveAndExit");
    QCOMPARE(home.prompt.lastQuestion, std::string("Please supply a name for this filter"));
    QCOMPARE(editor.result(), int(QDialog::Rejected));
    QVERIFY(editor.isVisible());
  }

  void deleteShowsTheNeighbourAndFindGoesByName() {
    Home home;
    RuleEditor editor(home.context, home.engine, false);
    QTest::keyClick(ruleList(editor), Qt::Key_End);
    click(editor, "cmdDelete");
    QCOMPARE(currentRow(editor), 3);
    QCOMPARE(nameBox(editor)->text(), QString("Lottery winners"));
    QCOMPARE(engineNames(home.engine).size(), std::size_t{4});

    QTest::keyClicks(child<QLineEdit>(editor, "txtSearchString"), "I");
    click(editor, "cmdFind");
    QCOMPARE(nameBox(editor)->text(), QString("Cheap pills"));
    click(editor, "cmdNext");
    QCOMPARE(nameBox(editor)->text(), QString("Friends"));
    click(editor, "cmdNext");
    QCOMPARE(nameBox(editor)->text(), QString("Lottery winners"));
    click(editor, "cmdNext");
    QCOMPARE(currentRow(editor), 3);

    // The scanner opens the editor on the rule that judged a message.
    editor.selectRule("Friends");
    QCOMPARE(currentRow(editor), 2);
    QCOMPARE(nameBox(editor)->text(), QString("Friends"));
  }

  void saveAndExitWritesTheRuleFile() {
    Home home("");
    RuleEditor editor(home.context, home.engine, false);
    QCOMPARE(nameBox(editor)->text(), QString("New Filter"));
    typeName(editor, "Cheap pills");
    fillCondition(editor, 0, "Subject:", 0, "viagra");
    fillCondition(editor, 2, "From:", 1, "friend@example.com");
    QTest::mouseClick(child<QCheckBox>(editor, "chkStopProcessing"), Qt::LeftButton, {}, QPoint(4, 8));
    click(editor, "cmdUpdate");

    typeName(editor, "Friends, family");
    for (const char* on : {"chkOn_0", "chkOn_1"}) QTest::mouseClick(child<QCheckBox>(editor, on), Qt::LeftButton, {}, QPoint(4, 8));
    fillCondition(editor, 2, "All Headers", 0, "@example.org");
    child<QComboBox>(editor, "cmbWhenMatched")->setCurrentIndex(2);
    QTest::mouseClick(child<QCheckBox>(editor, "chkStopProcessing"), Qt::LeftButton, {}, QPoint(4, 8));
    child<QComboBox>(editor, "cmbCategory")->setCurrentIndex(1);
    click(editor, "cmdSaveAndExit");

    QCOMPARE(editor.result(), int(QDialog::Accepted));
    std::ifstream golden(VONEL_SOURCE_DIR "/tests/data/rules/editor_rules.txt", std::ios::binary);
    std::ostringstream expected;
    expected << golden.rdbuf();
    QCOMPARE(QString::fromStdString(home.ruleFileText()), QString::fromStdString(expected.str()));
  }

  void exitWithoutSaveKeepsStoredRulesInMemoryOnly() {
    Home home;
    RuleEditor editor(home.context, home.engine, false);
    typeName(editor, "Casino");
    click(editor, "cmdUpdate");
    click(editor, "cmdExitWithoutSave");
    QCOMPARE(editor.result(), int(QDialog::Rejected));
    QCOMPARE(home.prompt.questions, 0);
    QCOMPARE(home.ruleFileText(), std::string(kFiveServerRules));
    QCOMPARE(engineNames(home.engine).back(), std::string("Casino"));
  }

  void survivesRulesTheFormCannotShow() {
    const std::string longName(300, 'n');
    const std::string odd =
        "Filtername, Old matches\r\nFilterField, Subject:\r\nFilterComparison, mtch\r\nFilterString, 3\r\n"
        "FilterAction, abc\r\nFilterDest, \r\nFilterStop, 0\r\nFilter_Category,  7 \r\n"
        "Filtername, ,,,\r\nFilterAction, 100\r\n"
        "Filtername, " + longName + "\r\nFilterAction, 200\r\n"
        "Filtername, Five fields\r\nFilterField, To:\r\nFilterField, CC:\r\nFilterField, BCC:\r\n"
        "FilterField, From:\r\nFilterField, Subject:\r\nFilterComparison, cnt\r\nFilterAction, 100\r\n";
    Home home(odd);
    RuleEditor editor(home.context, home.engine, false);
    QCOMPARE(child<QComboBox>(editor, "cmbComparison_0")->currentText(), QString("Contains"));
    QCOMPARE(child<QComboBox>(editor, "cmbCategory")->currentText(), QString("Private"));
    const int rows = ruleList(editor)->model()->rowCount();
    for (int row = 1; row < rows; ++row) QTest::keyClick(ruleList(editor), Qt::Key_Down);
    QCOMPARE(currentRow(editor), rows - 1);
    QCOMPARE(home.prompt.questions, 0);
    const std::vector<std::string> names = engineNames(home.engine);
    QVERIFY(std::ranges::find(names, longName) != names.end());
  }

  void screenshotsOfBothEditors() {
    if (qEnvironmentVariable("VONEL_SCREENSHOT_DIR").isEmpty()) QSKIP("VONEL_SCREENSHOT_DIR is not set");
    Home server;
    RuleEditor serverEditor(server.context, server.engine, false);
    saveShot(serverEditor, "rule_editor_server.png");
    Home local(kFiveLocalRules, true);
    RuleEditor localEditor(local.context, local.engine, true);
    saveShot(localEditor, "rule_editor_local.png");
  }
};

QTEST_MAIN(RuleEditorTest)
#include "rule_editor_test.moc"
