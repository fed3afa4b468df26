#include "ui/rules/rule_list_model.h"

#include "app/qtext.h"
#include "core/rules/rule_form.h"

namespace vonel {

RuleListModel::RuleListModel(rules::RuleSet rules, QObject* parent)
    : QAbstractTableModel(parent), set_(std::move(rules)) {}

void RuleListModel::resetRules(rules::RuleSet rules) {
  beginResetModel();
  set_ = rules::EditableRuleSet(std::move(rules));
  endResetModel();
  emit rulesChanged();
}

int RuleListModel::store(rules::FilterRule rule) {
  const int end = rowCount();
  const bool isNew = !set_.rowOfName(rule.filterName);
  if (isNew) beginInsertRows({}, end, end);
  const rules::EditableRuleSet::Stored stored = set_.store(std::move(rule));
  const int row = static_cast<int>(stored.row);
  if (stored.appended) {
    endInsertRows();
  } else if (stored.changed) {
    emit dataChanged(index(row, 0), index(row, 0));
  }
  if (stored.changed) emit rulesChanged();
  return row;
}

void RuleListModel::remove(int row) {
  beginRemoveRows({}, row, row);
  set_.remove(static_cast<std::size_t>(row));
  endRemoveRows();
  emit rulesChanged();
}

void RuleListModel::moveToTop(int row) {
  if (row <= 0) return;
  beginMoveRows({}, row, row, {}, 0);
  set_.moveToTop(static_cast<std::size_t>(row));
  endMoveRows();
  emit rulesChanged();
}

std::optional<int> RuleListModel::find(const QString& text, int start) const {
  const auto row = set_.find(fromQString(text), static_cast<std::size_t>(start));
  if (!row) return std::nullopt;
  return static_cast<int>(*row);
}

int RuleListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(set_.size());
}

int RuleListModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : 1; }

QVariant RuleListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::EditRole && role != Qt::ToolTipRole)) return {};
  return toQString(rule(index.row()).filterName);
}

QVariant RuleListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Horizontal && section == 0 && role == Qt::DisplayRole) return tr("Filter");
  return {};
}

Qt::ItemFlags RuleListModel::flags(const QModelIndex& index) const {
  return QAbstractTableModel::flags(index) | Qt::ItemIsEditable;
}

bool RuleListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || role != Qt::EditRole) return false;
  if (!set_.rename(static_cast<std::size_t>(index.row()), rules::lineValue(fromQString(value.toString())))) {
    return false;
  }
  emit dataChanged(index, index);
  emit rulesChanged();
  emit ruleRenamed(index.row());
  return true;
}

}  // namespace vonel
