#pragma once
// The rule editor's list: one row per rule of the set, showing its name,
// which can be edited in place. Every change of the set goes through here so
// that the view and the rule engine follow it.
#include <QAbstractTableModel>
#include <optional>

#include "core/rules/editable_rule_set.h"

namespace vonel {

class RuleListModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit RuleListModel(rules::RuleSet rules, QObject* parent = nullptr);

  const rules::RuleSet& rules() const { return set_.rules(); }
  const rules::FilterRule& rule(int row) const { return set_.at(static_cast<std::size_t>(row)); }
  void resetRules(rules::RuleSet rules);

  // Gives the row the rule now stands in.
  int store(rules::FilterRule rule);
  void remove(int row);
  void moveToTop(int row);
  std::optional<int> find(const QString& text, int start) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  // An in-place rename keeps the name as typed, commas too.
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 signals:
  // After every change of the set.
  void rulesChanged();
  void ruleRenamed(int row);

 private:
  rules::EditableRuleSet set_;
};

}  // namespace vonel
