#include "ui/mailer/new_folder_dialog.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "app/qtext.h"
#include "core/context/app_context.h"
#include "core/store/folder_lists.h"
#include "core/text/strings.h"

namespace vonel {
namespace {

constexpr std::string_view kRoot = "\\";

// A store path without the separators around it, for comparing.
std::string_view bare(std::string_view path) {
  while (!path.empty() && (path.front() == '\\' || path.front() == '/')) path.remove_prefix(1);
  while (!path.empty() && (path.back() == '\\' || path.back() == '/')) path.remove_suffix(1);
  return path;
}

}  // namespace

NewFolderDialog::NewFolderDialog(AppContext& context, std::string_view proposedParent, QWidget* parent)
    : QDialog(parent), ctx_(context), name_(new QLineEdit), parents_(new QComboBox) {
  setObjectName("frmNewFolder");
  setWindowTitle("New Folder");
  setMinimumWidth(340);
  name_->setObjectName("txtNewFolder");
  name_->setMaxLength(255);
  parents_->setObjectName("cmbParents");

  auto* form = new QFormLayout;
  form->addRow("Folder &name:", name_);
  form->addRow("&Inside:", parents_);

  auto* ok = new QPushButton("OK");
  ok->setObjectName("cmdOK");
  ok->setDefault(true);
  auto* cancel = new QPushButton("Cancel");
  cancel->setObjectName("cmdCancel");
  connect(ok, &QPushButton::clicked, this, &NewFolderDialog::onOk);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(ok);
  buttons->addWidget(cancel);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addLayout(buttons);
  setTabOrder(name_, parents_);
  setTabOrder(parents_, ok);
  setTabOrder(ok, cancel);
  fillParents(proposedParent);
  name_->setFocus();
}

void NewFolderDialog::fillParents(std::string_view proposedParent) {
  parents_->addItem(toQString(kRoot));
  const store::FolderChoices choices = store::folderChoices(ctx_.log, ctx_.folders);
  for (const std::string& folder : choices.items) parents_->addItem(toQString(folder));
  // The choosers' own pick (the Inbox) stands until the proposal names a
  // listed folder; a proposal of bare separators is the root.
  if (choices.selected) parents_->setCurrentIndex(static_cast<int>(*choices.selected) + 1);
  if (proposedParent.empty()) return;
  if (bare(proposedParent).empty()) {
    parents_->setCurrentIndex(0);
    return;
  }
  for (std::size_t i = 0; i < choices.items.size(); ++i) {
    if (text::equalsNoCase(bare(choices.items[i]), bare(proposedParent))) {
      parents_->setCurrentIndex(static_cast<int>(i) + 1);
    }
  }
}

void NewFolderDialog::onOk() {
  std::string name = fromQString(name_->text());
  const std::string parent = fromQString(parents_->currentText());
  const std::string problem = store::makeNewFolder(ctx_.log, ctx_.folders, parent, name);
  name_->setText(toQString(name));
  if (!problem.empty()) {
    ctx_.prompt.ask(problem, Buttons::Ok, "Vonel");
    name_->setFocus();
    return;
  }
  madeFolder_ = std::string(kRoot);
  if (!bare(parent).empty()) madeFolder_.append(bare(parent)).append(kRoot);
  madeFolder_ += name;
  accept();
}

bool runNewFolderDialog(AppContext& context, std::string_view proposedParent, QWidget* parent) {
  NewFolderDialog dialog(context, proposedParent, parent);
  return dialog.exec() == QDialog::Accepted;
}

}  // namespace vonel
