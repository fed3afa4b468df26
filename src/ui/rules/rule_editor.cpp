#include "ui/rules/rule_editor.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "app/qtext.h"
#include "core/context/app_context.h"
#include "core/rules/rule_engine.h"
#include "core/store/folder_lists.h"
#include "core/text/strings.h"
#include "ui/rules/rule_list_model.h"
#include "ui/rules/rule_list_view.h"

namespace vonel {

namespace {

constexpr std::string_view kBoxTitle = "Vonel";

QString qs(std::string_view text) { return toQString(text); }

QPushButton* makeButton(QWidget* parent, const char* name, const QString& caption) {
  auto* button = new QPushButton(caption, parent);
  button->setObjectName(name);
  button->setAutoDefault(false);
  return button;
}

QString indexed(const char* name, std::size_t n) { return QString("%1_%2").arg(name).arg(n); }

std::filesystem::path pathOf(const QString& chosen) { return QFile::encodeName(chosen).toStdString(); }

}  // namespace

RuleEditor::RuleEditor(AppContext& context, rules::RuleEngine& engine, bool local, QWidget* parent)
    : QDialog(parent), ctx_(context), engine_(engine), local_(local), model_(new RuleListModel(engine.rules(), this)) {
  setObjectName("frmFilters");
  setWindowTitle("Filters");
  buildForm();
  fillCombos();
  connect(model_, &RuleListModel::rulesChanged, this, [this] { engine_.setRules(model_->rules()); });
  connect(model_, &RuleListModel::ruleRenamed, this, &RuleEditor::onRuleRenamed);
  if (model_->rowCount() > 0) {
    displayRow(0);
  } else {
    clearForm();
  }
}

void RuleEditor::buildForm() {
  auto* layout = new QVBoxLayout(this);
  auto* heading = new QLabel(local_ ? "These filters will move inbound messages to selected folders"
                               : "These filters will delete spam based on header fields",
                        this);
  heading->setObjectName("lblHeading");
  heading->setWordWrap(true);
  layout->addWidget(heading);
  auto* sides = new QHBoxLayout;
  sides->addWidget(buildListSide(), 2);
  sides->addWidget(buildRuleSide(), 3);
  layout->addLayout(sides, 1);
  layout->addWidget(buildButtons());
  resize(1000, 540);
}

QWidget* RuleEditor::buildListSide() {
  auto* side = new QWidget(this);
  auto* column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);

  auto* listLabel = new QLabel("&Rules:", side);
  auto* view = new RuleListView(side);
  list_ = view;
  list_->setObjectName("ListView1");
  list_->setModel(model_);
  listLabel->setBuddy(list_);
  view->setLeaveCheck([this] { return addUpdateFilter().has_value(); });
  connect(list_->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &RuleEditor::onCurrentRowChanged);
  column->addWidget(listLabel);
  auto* listAndMoves = new QHBoxLayout;
  listAndMoves->addWidget(list_, 1);
  auto* moves = new QVBoxLayout;
  QPushButton* top = makeButton(side, "cmdTop", "Top");
  connect(top, &QPushButton::clicked, this, &RuleEditor::onTop);
  moves->addWidget(top);
  // Only the move to the top acts; the other moves are shown, never enabled.
  for (const auto& [name, caption] : {std::pair{"cmdUp", "Up"}, std::pair{"cmdUp10", "Up 10"},
                                      std::pair{"cmdDown", "Down"}, std::pair{"cmdDown10", "Down 10"},
                                      std::pair{"cmdBottom", "Bottom"}}) {
    QPushButton* move = makeButton(side, name, caption);
    move->setEnabled(false);
    moves->addWidget(move);
  }
  moves->addStretch(1);
  listAndMoves->addLayout(moves);
  column->addLayout(listAndMoves, 1);

  auto* search = new QHBoxLayout;
  auto* searchLabel = new QLabel("&Search:", side);
  searchText_ = new QLineEdit(side);
  searchText_->setObjectName("txtSearchString");
  searchLabel->setBuddy(searchText_);
  QPushButton* find = makeButton(side, "cmdFind", "Find");
  QPushButton* next = makeButton(side, "cmdNext", "Next");
  connect(find, &QPushButton::clicked, this, [this] { searchFrom(0); });
  connect(searchText_, &QLineEdit::returnPressed, this, [this] { searchFrom(0); });
  connect(next, &QPushButton::clicked, this, [this] { searchFrom(selectedRow() + 1); });
  search->addWidget(searchLabel);
  search->addWidget(searchText_, 1);
  search->addWidget(find);
  search->addWidget(next);
  column->addLayout(search);
  return side;
}

QWidget* RuleEditor::buildRuleSide() {
  auto* side = new QWidget(this);
  auto* column = new QVBoxLayout(side);
  column->setContentsMargins(0, 0, 0, 0);

  auto* nameRow = new QHBoxLayout;
  auto* nameLabel = new QLabel("&Name:", side);
  name_ = new QLineEdit(side);
  name_->setObjectName("txtFilterName");
  name_->setToolTip("This is just used to identify the filter. It doesn't have any effect on the program");
  nameLabel->setBuddy(name_);
  connect(name_, &QLineEdit::textEdited, this, &RuleEditor::onFormEdited);
  nameRow->addWidget(nameLabel);
  nameRow->addWidget(name_, 1);
  column->addLayout(nameRow);

  auto* conditions = new QGroupBox("Conditions", side);
  auto* grid = new QVBoxLayout(conditions);
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const QString number = QString::number(i + 1);
    ConditionRow& row = rows_[i];
    row.on = new QCheckBox(number, conditions);
    row.on->setObjectName(indexed("chkOn", i));
    row.on->setAccessibleName("Use condition " + number);
    row.frame = new QWidget(conditions);
    row.frame->setObjectName(indexed("fraCondition", i));
    auto* line = new QHBoxLayout(row.frame);
    line->setContentsMargins(0, 0, 0, 0);
    row.field = new QComboBox(row.frame);
    row.field->setObjectName(indexed("cmbField", i));
    row.field->setAccessibleName("Field " + number);
    row.comparison = new QComboBox(row.frame);
    row.comparison->setObjectName(indexed("cmbComparison", i));
    row.comparison->setAccessibleName("Comparison " + number);
    row.comparison->setToolTip("Be careful with 'Doesn't Contain'!");
    row.text = new QLineEdit(row.frame);
    row.text->setObjectName(indexed("txtText", i));
    row.text->setAccessibleName("Text " + number);
    row.text->setMinimumWidth(160);
    line->addWidget(row.field);
    line->addWidget(row.comparison);
    line->addWidget(row.text, 1);
    auto* rowLayout = new QHBoxLayout;
    rowLayout->addWidget(row.on);
    rowLayout->addWidget(row.frame, 1);
    grid->addLayout(rowLayout);
    connect(row.on, &QCheckBox::toggled, row.frame, &QWidget::setEnabled);
    connect(row.on, &QCheckBox::clicked, this, &RuleEditor::onFormEdited);
    connect(row.field, &QComboBox::activated, this, &RuleEditor::onFormEdited);
    connect(row.comparison, &QComboBox::activated, this, &RuleEditor::onFormEdited);
    connect(row.text, &QLineEdit::textEdited, this, &RuleEditor::onFormEdited);
  }
  column->addWidget(conditions);

  auto* action = new QGroupBox("Action", side);
  auto* actionGrid = new QGridLayout(action);
  auto* whenLabel = new QLabel("&When matched:", action);
  whenMatched_ = new QComboBox(action);
  whenMatched_->setObjectName("cmbWhenMatched");
  whenLabel->setBuddy(whenMatched_);
  mailFolders_ = new QComboBox(action);
  mailFolders_->setObjectName("cmbMailFolders");
  mailFolders_->setAccessibleName("Mail folder");
  destFolder_ = new QLineEdit(action);
  destFolder_->setObjectName("txtDestFolder");
  destFolder_->setAccessibleName("Destination");
  stopProcessing_ = new QCheckBox("Don't process subsequent rules", action);
  stopProcessing_->setObjectName("chkStopProcessing");
  stopProcessing_->setToolTip(
      "If you tick this box, matching messages will also skip any bayesian checks. This allows you to set up "
      "'always pass' rules.");
  auto* categoryLabel = new QLabel("C&ategory:", action);
  category_ = new QComboBox(action);
  category_->setObjectName("cmbCategory");
  categoryLabel->setBuddy(category_);
  actionGrid->addWidget(whenLabel, 0, 0);
  actionGrid->addWidget(whenMatched_, 0, 1);
  actionGrid->addWidget(mailFolders_, 1, 1, 1, 2);
  actionGrid->addWidget(destFolder_, 1, 1, 1, 2);
  actionGrid->addWidget(stopProcessing_, 2, 0, 1, 3);
  actionGrid->addWidget(categoryLabel, 3, 0);
  actionGrid->addWidget(category_, 3, 1);
  actionGrid->setColumnStretch(2, 1);
  connect(whenMatched_, &QComboBox::currentIndexChanged, this, &RuleEditor::onActionChanged);
  for (QComboBox* box : {whenMatched_, mailFolders_, category_}) {
    connect(box, &QComboBox::activated, this, &RuleEditor::onFormEdited);
  }
  connect(destFolder_, &QLineEdit::textEdited, this, &RuleEditor::onFormEdited);
  connect(stopProcessing_, &QCheckBox::clicked, this, &RuleEditor::onFormEdited);
  column->addWidget(action);
  column->addStretch(1);
  return side;
}

QWidget* RuleEditor::buildButtons() {
  auto* bar = new QWidget(this);
  auto* row = new QHBoxLayout(bar);
  row->setContentsMargins(0, 0, 0, 0);
  QPushButton* update = makeButton(bar, "cmdUpdate", "Save Filter");
  QPushButton* duplicate = makeButton(bar, "cmdDuplicate", "Copy Filter");
  QPushButton* remove = makeButton(bar, "cmdDelete", "Delete Filter");
  QPushButton* import = makeButton(bar, "cmdImportFilters", "Import Filters");
  import->setToolTip("You can only import a Rules file in the correct format");
  QPushButton* exportShared = makeButton(bar, "cmdExportSharedFilters", "Export Filters");
  QPushButton* saveAndExit = makeButton(bar, "cmdSaveAndExit", "Save and Exit");
  QPushButton* exitWithoutSave = makeButton(bar, "cmdExitWithoutSave", "Exit without Saving");
  connect(update, &QPushButton::clicked, this, &RuleEditor::onUpdate);
  connect(duplicate, &QPushButton::clicked, this, &RuleEditor::onDuplicate);
  connect(remove, &QPushButton::clicked, this, &RuleEditor::onDelete);
  connect(import, &QPushButton::clicked, this, &RuleEditor::onImport);
  connect(exportShared, &QPushButton::clicked, this, &RuleEditor::onExport);
  connect(saveAndExit, &QPushButton::clicked, this, &RuleEditor::onSaveAndExit);
  connect(exitWithoutSave, &QPushButton::clicked, this, &RuleEditor::reject);
  for (QPushButton* button : {update, duplicate, remove}) row->addWidget(button);
  row->addSpacing(16);
  row->addWidget(import);
  row->addWidget(exportShared);
  row->addStretch(1);
  row->addWidget(saveAndExit);
  row->addWidget(exitWithoutSave);
  return bar;
}

void RuleEditor::fillCombos() {
  for (ConditionRow& row : rows_) {
    for (std::string_view field : rules::offeredFields(local_)) row.field->addItem(qs(field));
    for (std::string_view comparison : rules::kComparisonTexts) row.comparison->addItem(qs(comparison));
  }
  for (const rules::ActionChoice& choice : rules::offeredActions(local_)) {
    whenMatched_->addItem(qs(choice.text), qs(choice.code));
  }
  if (local_) {
    for (const std::string& folder : store::folderChoices(ctx_.log, ctx_.folders).items) {
      mailFolders_->addItem(qs(folder));
    }
  }
  for (std::string_view category : rules::kCategoryTexts) category_->addItem(qs(category));
  onActionChanged();
}

void RuleEditor::clearForm() {
  name_->setText("New Filter");
  for (ConditionRow& row : rows_) {
    row.on->setChecked(false);
    row.frame->setEnabled(false);
    row.field->setCurrentIndex(0);
    row.comparison->setCurrentIndex(0);
    row.text->clear();
  }
  destFolder_->clear();
  changed_ = false;
}

void RuleEditor::displayFilter(const rules::FilterRule& rule) {
  clearForm();
  name_->setText(qs(rule.filterName));
  stopProcessing_->setChecked(rule.stopProcessing);
  if (rule.ruleCount == 0) ctx_.log.logEvent("Rule " + rule.filterName + " has no parameters");
  // A number past the list's end (hand-edited) counts as private, as in the check.
  category_->setCurrentIndex(std::clamp<int>(static_cast<int>(rule.scope), 0, category_->count() - 1));
  const int held = std::clamp<int>(rule.ruleCount, 0, rules::FilterRule::kMaxConditions);
  for (int n = 1; n <= held; ++n) {
    const ConditionRow& row = rows_[static_cast<std::size_t>(n - 1)];
    row.on->setChecked(true);
    row.text->setText(qs(rule.strings(n)));
    if (const std::optional<int> position = rules::comparisonPosition(rule.comparisons(n))) {
      row.comparison->setCurrentIndex(*position);
    }
    if (const int field = row.field->findText(qs(rule.fields(n))); field >= 0) row.field->setCurrentIndex(field);
  }
  if (const int action = whenMatched_->findData(qs(rule.action)); action >= 0) whenMatched_->setCurrentIndex(action);
  if (rule.action == rules::action::kMoveToFolder) {
    findMailFolder(rule.destFolder);
  } else if (rule.action == rules::action::kSaveAttachments || rule.action == rules::action::kRunFile ||
             rule.action == rules::action::kTag) {
    destFolder_->setText(qs(rule.destFolder));
  }
  changed_ = false;
}

void RuleEditor::displayRow(int row) {
  const QModelIndex at = model_->index(row, 0);
  selecting_ = true;
  list_->selectionModel()->setCurrentIndex(at, QItemSelectionModel::ClearAndSelect);
  selecting_ = false;
  list_->scrollTo(at);
  displayFilter(model_->rule(row));
}

void RuleEditor::selectRule(const std::string& name) {
  const auto it = std::ranges::find(model_->rules(), name, &rules::FilterRule::filterName);
  if (it != model_->rules().end()) displayRow(static_cast<int>(it - model_->rules().begin()));
}

int RuleEditor::selectedRow() const {
  const QModelIndex current = list_->selectionModel()->currentIndex();
  return current.isValid() ? current.row() : -1;
}

rules::RuleForm RuleEditor::form() const {
  rules::RuleForm form;
  form.name = fromQString(name_->text());
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    form.conditions[i] = {rows_[i].on->isChecked(), fromQString(rows_[i].field->currentText()),
                          rows_[i].comparison->currentIndex(), fromQString(rows_[i].text->text())};
  }
  form.actionCode = fromQString(whenMatched_->currentData().toString());
  form.mailFolder = fromQString(mailFolders_->currentText());
  form.destFolder = fromQString(destFolder_->text());
  form.stopProcessing = stopProcessing_->isChecked();
  form.category = category_->currentIndex();
  return form;
}

std::optional<int> RuleEditor::addUpdateFilter() {
  const rules::RuleForm filled = form();
  if (const std::optional<std::string> problem = filled.problem()) {
    ctx_.prompt.ask(*problem, Buttons::Ok, kBoxTitle);
    return std::nullopt;
  }
  changed_ = false;
  return model_->store(filled.toRule());
}

void RuleEditor::findMailFolder(const std::string& name) {
  const std::string wanted = text::lower(name);
  for (int i = 0; i < mailFolders_->count(); ++i) {
    const std::string entry = text::lower(fromQString(mailFolders_->itemText(i)));
    if (entry == "\\inbox\\") mailFolders_->setCurrentIndex(i);
    if (entry == wanted) {
      mailFolders_->setCurrentIndex(i);
      return;
    }
  }
}

bool RuleEditor::loseChangesOk() {
  return !changed_ || ctx_.prompt.ask("You will lose your changes - are you sure?", Buttons::YesNo, kBoxTitle) ==
                          Answer::Yes;
}

void RuleEditor::searchFrom(int start) {
  const std::optional<int> hit = model_->find(searchText_->text(), start);
  if (!hit) return;
  if (*hit != selectedRow() && selectedRow() >= 0 && !addUpdateFilter()) return;
  displayRow(*hit);
}

void RuleEditor::onCurrentRowChanged(const QModelIndex& current, const QModelIndex&) {
  if (!selecting_ && current.isValid()) displayFilter(model_->rule(current.row()));
}

void RuleEditor::onActionChanged() {
  const std::string code = fromQString(whenMatched_->currentData().toString());
  mailFolders_->setVisible(code == rules::action::kMoveToFolder);
  destFolder_->setVisible(code == rules::action::kSaveAttachments || code == rules::action::kRunFile ||
                          code == rules::action::kTag);
}

void RuleEditor::onRuleRenamed(int row) {
  if (row == selectedRow()) name_->setText(qs(model_->rule(row).filterName));
}

void RuleEditor::onUpdate() {
  if (const std::optional<int> row = addUpdateFilter()) displayRow(*row);
}

void RuleEditor::onDuplicate() {
  if (!loseChangesOk()) return;
  name_->setText("Copy of " + name_->text());
  changed_ = true;
}

void RuleEditor::onDelete() {
  const int row = selectedRow();
  if (row < 0) return;
  selecting_ = true;
  model_->remove(row);
  selecting_ = false;
  if (model_->rowCount() == 0) {
    clearForm();
  } else {
    displayRow(std::min(row, model_->rowCount() - 1));
  }
}

void RuleEditor::onTop() {
  const int row = selectedRow();
  if (row < 0 || !loseChangesOk()) return;
  model_->moveToTop(row);
  displayRow(0);
}

void RuleEditor::onSaveAndExit() {
  if (!addUpdateFilter()) return;
  engine_.saveFilters();
  accept();
}

void RuleEditor::reject() {
  if (loseChangesOk()) QDialog::reject();
}

void RuleEditor::onImport() {
  const QString chosen = QFileDialog::getOpenFileName(this, "Import Filters", {}, "TXT Files (*.txt)");
  if (chosen.isEmpty()) return;
  QApplication::setOverrideCursor(Qt::WaitCursor);
  engine_.importFilters(pathOf(chosen));
  QApplication::restoreOverrideCursor();
  model_->resetRules(engine_.rules());
  if (model_->rowCount() > 0) displayRow(0);
}

void RuleEditor::onExport() {
  QFileDialog dialog(this, "Export Filters", {}, "TXT Files (*.txt)");
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix("TXT");
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return;
  const bool sharedOnly = ctx_.prompt.ask("Only save shared filters?", Buttons::YesNo, kBoxTitle) == Answer::Yes;
  engine_.exportFilters(pathOf(dialog.selectedFiles().front()), sharedOnly);
}

void runRuleEditor(AppContext& context, rules::RuleEngine& engine, bool local, QWidget* parent) {
  RuleEditor editor(context, engine, local, parent);
  editor.exec();
}

void runRuleEditorOn(AppContext& context, rules::RuleEngine& engine, bool local, const std::string& ruleName,
                     QWidget* parent) {
  RuleEditor editor(context, engine, local, parent);
  editor.selectRule(ruleName);
  editor.exec();
}

}  // namespace vonel
