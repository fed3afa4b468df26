#pragma once
// Makes a folder in the store under a chosen parent (frmNewFolder). The name
// keeps only its letters, digits and blanks; a name that is empty or taken
// is refused with a box and the dialog stays open.
#include <QDialog>
#include <string>
#include <string_view>

class QComboBox;
class QLineEdit;

namespace vonel {

class AppContext;

class NewFolderDialog final : public QDialog {
  Q_OBJECT

 public:
  // `proposedParent` is a store path such as "Inbox\Work" or "\inbox\work\"
  // (any case); the root when it is empty or not listed.
  NewFolderDialog(AppContext& context, std::string_view proposedParent, QWidget* parent = nullptr);

  // The folder made, as a store path: "\Inbox\Work"; empty until then.
  const std::string& madeFolder() const { return madeFolder_; }

 private:
  void fillParents(std::string_view proposedParent);
  void onOk();

  AppContext& ctx_;
  QLineEdit* name_;
  QComboBox* parents_;
  std::string madeFolder_;
};

// Shows the dialog modally. True when a folder was made, so that the folder
// lists and the tree must be made again.
bool runNewFolderDialog(AppContext& context, std::string_view proposedParent, QWidget* parent);

}  // namespace vonel
