#pragma once
// The settings dialog: the twenty accounts, one shown at a time, and the
// general options, in tabs. OK checks the form and writes both settings
// files; Cancel writes nothing.
#include <QDialog>
#include <array>

#include "core/context/app_context.h"
#include "core/settings/settings_form.h"

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLineEdit;
class QPlainTextEdit;
class QListWidget;
class QRadioButton;
class QTabWidget;
class QWidget;

namespace vonel {

class MailController;
class SecurityControls;

class SettingsDialog final : public QDialog {
  Q_OBJECT

 public:
  explicit SettingsDialog(AppContext& context, QWidget* parent = nullptr);

  // OK: the checks, the corrections, the writes; stays open on a refusal.
  void accept() override;

 private:
  QWidget* makeAccountsTab();
  QWidget* makeScanningTab();
  QWidget* makeMessagesTab();
  QWidget* makeGeneralTab();
  QWidget* makeFoldersTab();
  QLineEdit* addLineEdit(QFormLayout* layout, const QString& name, const QString& label);
  QCheckBox* addCheckBox(QFormLayout* layout, const QString& name, const QString& caption);

  void showForm();
  void showAccount(int index);
  void keepAccount(int index);
  void onAccountPicked(int index);
  void onTitleEdited(const QString& title);
  SettingsForm formFromBoxes();
  // The checks and the writes of OK; false when the dialog stays open.
  bool storeForm();
  void showText(const std::string& text);

  AppContext& ctx_;
  SettingsForm form_;
  int shownAccount_ = 0;

  QTabWidget* tabs_ = nullptr;
  QComboBox* account_ = nullptr;
  QLineEdit* title_ = nullptr;
  QLineEdit* server_ = nullptr;
  QLineEdit* popPort_ = nullptr;
  QLineEdit* userName_ = nullptr;
  QLineEdit* password_ = nullptr;
  QCheckBox* useServer_ = nullptr;
  QCheckBox* stopAtLast_ = nullptr;
  QCheckBox* pipelining_ = nullptr;
  QLineEdit* smtp_ = nullptr;
  QLineEdit* smtpPort_ = nullptr;
  QCheckBox* smtpAuth_ = nullptr;
  QLineEdit* smtpUser_ = nullptr;
  QLineEdit* smtpPassword_ = nullptr;
  QLineEdit* replyAddress_ = nullptr;
  QLineEdit* displayName_ = nullptr;
  std::array<QLineEdit*, 2> exclusive_{};
  SecurityControls* security_ = nullptr;

  QCheckBox* scanOnStartup_ = nullptr;
  QLineEdit* seconds_ = nullptr;
  QCheckBox* retrieveOnStartup_ = nullptr;
  QCheckBox* disableReadFromServer_ = nullptr;
  QCheckBox* autoDelete_ = nullptr;
  QCheckBox* deleteOnRetrieve_ = nullptr;
  QCheckBox* audio_ = nullptr;
  QLineEdit* timeout_ = nullptr;
  QLineEdit* maxSize_ = nullptr;
  QLineEdit* bounceSubject_ = nullptr;
  QLineEdit* bouncePrefix_ = nullptr;

  std::array<QLineEdit*, 3> ages_{};
  QComboBox* fontSize_ = nullptr;
  QComboBox* messageFontSize_ = nullptr;
  QLineEdit* fontName_ = nullptr;
  QPlainTextEdit* signature_ = nullptr;

  QListWidget* languages_ = nullptr;
  QRadioButton* scannerFirst_ = nullptr;
  QRadioButton* mailerFirst_ = nullptr;
  QCheckBox* startMinimised_ = nullptr;
  QCheckBox* autoUpdateCheck_ = nullptr;

  QLineEdit* messageStore_ = nullptr;
  QLineEdit* dataFolder_ = nullptr;
  QLineEdit* filterFolder_ = nullptr;
  QLineEdit* spamArchive_ = nullptr;
};

// The settings command of the main window: nothing while a pass runs;
// otherwise the auto scan stops, the dialog runs modally, and the controller
// takes up the new settings. True when the user left with OK.
bool showSettingsDialog(AppContext& context, MailController& controller, QWidget* parent);

}  // namespace vonel
