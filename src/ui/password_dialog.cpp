#include "ui/password_dialog.h"

#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "app/qtext.h"

namespace vonel {

std::string PasswordDialog::askPassword(std::string_view title, std::string_view prompt, bool& cancelled,
                                        bool& save) {
  QDialog dialog(parent_);
  dialog.setObjectName("fSHAREDPassword");
  dialog.setWindowTitle(toQString(title));
  auto* layout = new QVBoxLayout(&dialog);
  layout->addWidget(new QLabel(toQString(prompt)));
  auto* password = new QLineEdit;
  password->setObjectName("txtPassword");
  password->setEchoMode(QLineEdit::Password);
  layout->addWidget(password);
  auto* remember = new QCheckBox("Save password");
  remember->setObjectName("chkSave");
  layout->addWidget(remember);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  layout->addWidget(buttons);
  cancelled = dialog.exec() != QDialog::Accepted;
  save = !cancelled && remember->isChecked();
  return cancelled ? std::string() : fromQString(password->text());
}

}  // namespace vonel
