#pragma once
// The rule editor: the rules of one set as a list on the left and the chosen
// rule in a form on the right. The form is stored before every change of
// row; the set in memory follows each stored change at once, and the rule
// file is written only by "Save and Exit" (and by an import).
#include <QDialog>
#include <array>
#include <optional>
#include <string>

#include "core/rules/filter_rule.h"
#include "core/rules/rule_form.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListView;
class QPushButton;
class QWidget;

namespace vonel {

class AppContext;
class RuleListModel;
namespace rules {
class RuleEngine;
}

class RuleEditor final : public QDialog {
  Q_OBJECT

 public:
  RuleEditor(AppContext& context, rules::RuleEngine& engine, bool local, QWidget* parent = nullptr);

  // Selects the rule of that name and shows it; the first rule when none has it.
  void selectRule(const std::string& name);

  // Escape and the window's close box leave as "Exit without Saving" does.
  void reject() override;

 private:
  struct ConditionRow {
    QWidget* frame;
    QCheckBox* on;
    QComboBox* field;
    QComboBox* comparison;
    QLineEdit* text;
  };

  void buildForm();
  QWidget* buildListSide();
  QWidget* buildRuleSide();
  QWidget* buildButtons();
  void fillCombos();

  void clearForm();
  void displayFilter(const rules::FilterRule& rule);
  void displayRow(int row);
  rules::RuleForm form() const;
  // Stores the form; gives the rule's row, or nothing when a message stopped it.
  std::optional<int> addUpdateFilter();
  void findMailFolder(const std::string& name);
  bool loseChangesOk();
  void searchFrom(int start);
  int selectedRow() const;

  void onCurrentRowChanged(const QModelIndex& current, const QModelIndex& previous);
  void onActionChanged();
  void onFormEdited() { changed_ = true; }
  void onRuleRenamed(int row);
  void onUpdate();
  void onDuplicate();
  void onDelete();
  void onTop();
  void onSaveAndExit();
  void onImport();
  void onExport();

  AppContext& ctx_;
  rules::RuleEngine& engine_;
  const bool local_;
  RuleListModel* model_;
  bool changed_ = false;
  bool selecting_ = false;  // a row chosen by the editor itself, not by the user

  QListView* list_ = nullptr;
  QLineEdit* name_ = nullptr;
  std::array<ConditionRow, rules::FilterRule::kMaxConditions> rows_{};
  QComboBox* whenMatched_ = nullptr;
  QComboBox* mailFolders_ = nullptr;
  QLineEdit* destFolder_ = nullptr;
  QCheckBox* stopProcessing_ = nullptr;
  QComboBox* category_ = nullptr;
  QLineEdit* searchText_ = nullptr;
};

// Shows the editor of the server set, or the local one, modally, and returns
// when it is closed by either button.
void runRuleEditor(AppContext& context, rules::RuleEngine& engine, bool local, QWidget* parent);
// The same, opening on the rule of that name.
void runRuleEditorOn(AppContext& context, rules::RuleEngine& engine, bool local, const std::string& ruleName,
                     QWidget* parent);

}  // namespace vonel
