#include "ui/mailer/folder_tree.h"

#include <QHeaderView>
#include <system_error>

#include "app/qtext.h"
#include "core/store/folder_listing.h"
#include "core/store/store_lister.h"
#include "core/store/tag_files.h"

namespace vonel {
namespace {

namespace fs = std::filesystem;

constexpr int kKeyRole = Qt::UserRole;
constexpr int kTagRole = Qt::UserRole + 1;
const QChar kSeparator = QLatin1Char('\\');

QString countedText(const QString& tag, int count) { return tag + " (" + QString::number(count) + ")"; }

QColor displayColour(std::int32_t blueGreenRed) {
  return QColor(blueGreenRed & 0xFF, (blueGreenRed >> 8) & 0xFF, (blueGreenRed >> 16) & 0xFF);
}

}  // namespace

FolderTree::FolderTree(AppContext& context, QWidget* parent) : QTreeWidget(parent), ctx_(context) {
  setObjectName("TreeView1");
  setAccessibleName("Folders");
  setHeaderHidden(true);
  setColumnCount(1);
  setUniformRowHeights(true);
  setSelectionMode(QAbstractItemView::SingleSelection);
  header()->setStretchLastSection(true);
}

void FolderTree::clearFolders() {
  clear();
  nodes_.clear();
}

void FolderTree::addFolder(const QString& name, const QString& parentName) {
  QTreeWidgetItem* parent = nullptr;
  const QString wanted = parentName.trimmed();
  if (!wanted.isEmpty()) {
    for (auto it = nodes_.rbegin(); it != nodes_.rend() && !parent; ++it) {
      if (tagOf(*it).trimmed().compare(wanted, Qt::CaseInsensitive) == 0) parent = *it;
    }
  }
  auto* node = parent ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(this);
  node->setData(0, kTagRole, name);
  node->setText(0, name);
  // The key is the node's path without the tree's root, which stands for the store root.
  QStringList path;
  for (const QTreeWidgetItem* step = node; step->parent(); step = step->parent()) path.prepend(tagOf(step));
  node->setData(0, kKeyRole, path.join(kSeparator).toLower());
  nodes_.push_back(node);
}

QString FolderTree::keyOf(const QTreeWidgetItem* node) { return node ? node->data(0, kKeyRole).toString() : QString(); }

QString FolderTree::tagOf(const QTreeWidgetItem* node) { return node ? node->data(0, kTagRole).toString() : QString(); }

QTreeWidgetItem* FolderTree::nodeForKey(const QString& key) const {
  for (QTreeWidgetItem* node : nodes_) {
    if (keyOf(node) == key) return node;
  }
  return nullptr;
}

QTreeWidgetItem* FolderTree::nodeForFolder(const fs::path& folder) const {
  const fs::path relative = folder.lexically_normal().lexically_relative(ctx_.folders.messageFolderPath.lexically_normal());
  QString key;
  for (const fs::path& piece : relative) {
    if (piece.empty() || piece == ".") continue;
    if (!key.isEmpty()) key += kSeparator;
    key += QString::fromStdString(piece.string());
  }
  return nodeForKey(key.toLower());
}

fs::path FolderTree::folderOf(const QTreeWidgetItem* node) const {
  std::vector<std::string> names;
  for (const QTreeWidgetItem* step = node; step && step->parent(); step = step->parent()) {
    names.push_back(fromQString(tagOf(step)));
  }
  fs::path folder = ctx_.folders.messageFolderPath;
  for (auto it = names.rbegin(); it != names.rend(); ++it) folder /= *it;
  return folder;
}

std::optional<std::int32_t> FolderTree::colourOf(const QTreeWidgetItem* node) {
  const QVariant colour = node->data(0, kColourRole);
  if (!colour.isValid()) return std::nullopt;
  return colour.toInt();
}

void FolderTree::setColour(QTreeWidgetItem* node, std::optional<std::int32_t> colour) {
  node->setData(0, kColourRole, colour ? QVariant(*colour) : QVariant());
  node->setData(0, Qt::ForegroundRole, colour ? QVariant(displayColour(*colour)) : QVariant());
}

void FolderTree::setPlain(QTreeWidgetItem* node, bool& changed) {
  QFont font = node->font(0);
  if (font.bold()) {
    font.setBold(false);
    node->setFont(0, font);
    changed = true;
  }
  if (node->text(0) != tagOf(node)) {
    node->setText(0, tagOf(node));
    changed = true;
  }
}

void FolderTree::setCounted(QTreeWidgetItem* node, int count, bool& changed) {
  QFont font = node->font(0);
  if (!font.bold()) {
    font.setBold(true);
    node->setFont(0, font);
    changed = true;
  }
  const QString text = countedText(tagOf(node), count);
  if (node->text(0) != text) {
    node->setText(0, text);
    changed = true;
  }
}

bool FolderTree::applyTagFiles(QTreeWidgetItem* node, const store::AgeLimits& limits, const text::DateTime& now) {
  const fs::path folder = folderOf(node);
  const int count = store::unreadTagCount(folder);
  bool changed = false;
  if (count <= 0) {
    setPlain(node, changed);
    if (colourOf(node)) {
      setColour(node, std::nullopt);
      changed = true;
    }
    return changed;
  }
  setCounted(node, count, changed);
  const std::int32_t colour = store::folderNodeColour(limits, now, store::lastMessageTagDay(folder));
  if (colourOf(node) != colour) {
    setColour(node, colour);
    changed = true;
  }
  return changed;
}

bool FolderTree::setNodeColour(QTreeWidgetItem* node) {
  if (!node) return false;
  const bool changed = applyTagFiles(node, store::AgeLimits::read(ctx_.settings), ctx_.clock.now());
  if (changed && colourOf(node)) passColourUp(node);
  return changed;
}

// Parents come before their children in the node list, so a parent's own
// state is set before its children pass their colours up to it.
void FolderTree::setNodeColours() {
  const store::AgeLimits limits = store::AgeLimits::read(ctx_.settings);
  const text::DateTime now = ctx_.clock.now();
  for (QTreeWidgetItem* node : nodes_) {
    applyTagFiles(node, limits, now);
    if (colourOf(node)) passColourUp(node);
  }
}

void FolderTree::passColourUp(QTreeWidgetItem* node) {
  const std::int32_t colour = *colourOf(node);
  for (QTreeWidgetItem* ancestor = node->parent(); ancestor; ancestor = ancestor->parent()) {
    const std::int32_t shown = store::parentNodeColour(colourOf(ancestor).value_or(-1), colour);
    if (shown != colourOf(ancestor).value_or(-1)) setColour(ancestor, shown);
  }
}

void FolderTree::showNodeAsUnread() {
  QTreeWidgetItem* node = chosenNode();
  if (!node) return;
  QFont font = node->font(0);
  font.setBold(true);
  node->setFont(0, font);
}

void FolderTree::showNodeAsRead() {
  QTreeWidgetItem* node = chosenNode();
  if (!node) return;
  bool changed = false;
  setPlain(node, changed);
}

void FolderTree::compareUnread(QTreeWidgetItem* node, int unreadRows) {
  if (!node) return;
  bool changed = false;
  if (unreadRows == 0) {
    setPlain(node, changed);
    return;
  }
  setCounted(node, unreadRows, changed);
}

void FolderTree::displaySpecialCounts() {
  displayThisCount(ctx_.folders.outboxFolderPath);
  displayThisCount(ctx_.folders.sentFolderPath);
}

void FolderTree::displayThisCount(const fs::path& folder) {
  QTreeWidgetItem* node = nodeForFolder(folder);
  if (!node) return;
  const auto count = static_cast<int>(store::listMessageFiles(folder).size());
  node->setText(0, count > 0 ? countedText(tagOf(node), count) : tagOf(node));
}

}  // namespace vonel
