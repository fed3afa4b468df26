#pragma once
// The mail window's folder tree `TreeView1`. Each node's key is its folder's
// path below the store root in lower case ("inbox\\work"), its tag the
// folder's plain name; its text is the name with the unread count, bold while
// the folder has unread mail, coloured by the age of its newest unread mail.
// What it shows comes from the tag files beside the messages.
#include <QTreeWidget>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "core/context/app_context.h"
#include "core/store/store_lister.h"

namespace vonel {

class FolderTree final : public QTreeWidget {
  Q_OBJECT

 public:
  // The node's age colour as blue-green-red, absent while it shows the window-text colour.
  static constexpr int kColourRole = Qt::UserRole + 2;

  FolderTree(AppContext& context, QWidget* parent = nullptr);

  void clearFolders();
  // A folder without a parent name goes to the root; otherwise under the
  // last node whose tag matches the parent name, or the root if none does.
  void addFolder(const QString& name, const QString& parentName);

  static QString keyOf(const QTreeWidgetItem* node);
  static QString tagOf(const QTreeWidgetItem* node);
  QTreeWidgetItem* nodeForKey(const QString& key) const;
  // The node of a folder on disk, found by its path below the store root.
  QTreeWidgetItem* nodeForFolder(const std::filesystem::path& folder) const;
  std::filesystem::path folderOf(const QTreeWidgetItem* node) const;
  QTreeWidgetItem* chosenNode() const { return currentItem(); }

  // Bold, count and colour of every node from its tag files. A child with
  // unread mail passes its colour to every ancestor, parents first, so a
  // folder shows the freshest unread mail below it.
  void setNodeColours();
  // One node; true when anything about it changed.
  bool setNodeColour(QTreeWidgetItem* node);
  // The chosen node with unread mail found while its list fills.
  void showNodeAsUnread();
  // The chosen node without unread mail: plain. The list keeps the tag files.
  void showNodeAsRead();
  // After a full listing: the count of unread rows becomes the node's state.
  void compareUnread(QTreeWidgetItem* node, int unreadRows);
  // The Outbox and Sent Items nodes show how many messages they hold.
  void displaySpecialCounts();

 private:
  // Count, bold and colour from the folder's tag files; true when anything changed.
  bool applyTagFiles(QTreeWidgetItem* node, const store::AgeLimits& limits, const text::DateTime& now);
  void setPlain(QTreeWidgetItem* node, bool& changed);
  void setCounted(QTreeWidgetItem* node, int count, bool& changed);
  static std::optional<std::int32_t> colourOf(const QTreeWidgetItem* node);
  static void setColour(QTreeWidgetItem* node, std::optional<std::int32_t> colour);
  void passColourUp(QTreeWidgetItem* node);
  void displayThisCount(const std::filesystem::path& folder);

  AppContext& ctx_;
  std::vector<QTreeWidgetItem*> nodes_;  // in the order they were added
};

}  // namespace vonel
