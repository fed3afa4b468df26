#include "ui/settings/settings_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QUrl>
#include <QVBoxLayout>

#include "app/mail_controller.h"
#include "app/qtext.h"
#include "core/files/path_text.h"
#include "core/log/log_places.h"
#include "core/text/numbers.h"
#include "ui/settings/security_controls.h"

namespace vonel {
namespace {

const QStringList kFontSizes = {"8", "9", "10", "11", "12", "14", "16", "18"};

QString plain(QString caption) { return caption.remove('&').remove(':'); }

std::string boxText(const QLineEdit* box) { return fromQString(box->text()); }
std::string boxText(const QComboBox* box) { return fromQString(box->currentText()); }

int portNumber(const QLineEdit* box) { return text::toWhole<int>(text::val(boxText(box))); }

QComboBox* fontSizeBox(const QString& name) {
  auto* box = new QComboBox;
  box->setObjectName(name);
  box->setEditable(true);
  box->addItems(kFontSizes);
  return box;
}

void showInBox(QComboBox* box, const std::string& value) { box->setCurrentText(toQString(value)); }

QString accountEntry(int index, const std::string& title) {
  return QString::number(index + 1) + " - " + toQString(title);
}

QGroupBox* group(const QString& caption, QLayout* layout) {
  auto* box = new QGroupBox(caption);
  box->setLayout(layout);
  return box;
}

QWidget* page(const QString& name, QLayout* layout) {
  auto* widget = new QWidget;
  widget->setObjectName(name);
  widget->setLayout(layout);
  return widget;
}

}  // namespace

SettingsDialog::SettingsDialog(AppContext& context, QWidget* parent) : QDialog(parent), ctx_(context) {
  setObjectName("frmSettings");
  setWindowTitle("Settings");

  tabs_ = new QTabWidget;
  tabs_->setObjectName("tabSettings");
  tabs_->setAccessibleName("Settings pages");
  tabs_->addTab(makeAccountsTab(), "&Accounts");
  tabs_->addTab(makeScanningTab(), "&Scanning");
  tabs_->addTab(makeMessagesTab(), "&Messages");
  tabs_->addTab(makeGeneralTab(), "&General");
  tabs_->addTab(makeFoldersTab(), "&Folders");

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help);
  buttons->button(QDialogButtonBox::Ok)->setObjectName("cmdOK");
  buttons->button(QDialogButtonBox::Cancel)->setObjectName("cmdCancel");
  buttons->button(QDialogButtonBox::Help)->setObjectName("cmdHelp");
  connect(buttons, &QDialogButtonBox::accepted, this, &SettingsDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &SettingsDialog::reject);
  connect(buttons, &QDialogButtonBox::helpRequested, this, [this] {
    QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString((ctx_.installFolder() / "settings.htm").string())));
  });

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tabs_);
  layout->addWidget(buttons);

  form_ = readSettingsForm(ctx_.settings, ctx_.folders);
  showForm();
}

QLineEdit* SettingsDialog::addLineEdit(QFormLayout* layout, const QString& name, const QString& label) {
  auto* box = new QLineEdit;
  box->setObjectName(name);
  box->setAccessibleName(plain(label));
  layout->addRow(label, box);
  return box;
}

QCheckBox* SettingsDialog::addCheckBox(QFormLayout* layout, const QString& name, const QString& caption) {
  auto* box = new QCheckBox(caption);
  box->setObjectName(name);
  layout->addRow(box);
  return box;
}

QWidget* SettingsDialog::makeAccountsTab() {
  account_ = new QComboBox;
  account_->setObjectName("cmbAccount");
  account_->setAccessibleName("Account");
  auto* pick = new QFormLayout;
  pick->addRow("A&ccount:", account_);

  auto* incoming = new QFormLayout;
  title_ = addLineEdit(incoming, "txtTitle", "&Title:");
  server_ = addLineEdit(incoming, "txtServer", "POP3 se&rver:");
  popPort_ = addLineEdit(incoming, "txtPOPPort", "POP3 &port:");
  userName_ = addLineEdit(incoming, "txtUsername", "&User name:");
  password_ = addLineEdit(incoming, "txtPassword", "Pass&word:");
  password_->setEchoMode(QLineEdit::Password);
  useServer_ = addCheckBox(incoming, "chkUseServer", "&Include in automatic scans");
  stopAtLast_ = addCheckBox(incoming, "chkStopAtLast", "Stop at the &last message seen");
  pipelining_ = addCheckBox(incoming, "chkPipelining", "Send scan commands a&head when the server allows");

  auto* outgoing = new QFormLayout;
  smtp_ = addLineEdit(outgoing, "txtSMTP", "SMTP ser&ver:");
  smtpPort_ = addLineEdit(outgoing, "txtSMTPPort", "SMTP p&ort:");
  smtpAuth_ = addCheckBox(outgoing, "chkSMTPAuth", "Server needs a user &name and password");
  smtpUser_ = addLineEdit(outgoing, "txtSMTPUser", "SMTP us&er:");
  smtpPassword_ = addLineEdit(outgoing, "txtSMTPPasswd", "SMTP passwor&d:");
  smtpPassword_->setEchoMode(QLineEdit::Password);
  replyAddress_ = addLineEdit(outgoing, "txtReplyAddress", "Repl&y address:");
  displayName_ = addLineEdit(outgoing, "txtDisplayName", "Display name:");

  auto* exclusive = new QFormLayout;
  exclusive_[0] = addLineEdit(exclusive, "txtExclusive_0", "E&xclusive address 1:");
  exclusive_[1] = addLineEdit(exclusive, "txtExclusive_1", "Exclusive address &2:");

  auto toggleAuth = [this](bool on) {
    smtpUser_->setEnabled(on);
    smtpPassword_->setEnabled(on);
  };
  connect(smtpAuth_, &QCheckBox::toggled, this, toggleAuth);
  connect(account_, &QComboBox::currentIndexChanged, this, &SettingsDialog::onAccountPicked);
  connect(title_, &QLineEdit::textEdited, this, &SettingsDialog::onTitleEdited);
  security_ = new SecurityControls({popPort_, password_, smtpPort_, smtpAuth_}, incoming, outgoing, this);

  auto* servers = new QHBoxLayout;
  servers->addWidget(group("Incoming mail", incoming));
  servers->addWidget(group("Outgoing mail", outgoing));
  auto* layout = new QVBoxLayout;
  layout->addLayout(pick);
  layout->addLayout(servers);
  layout->addWidget(group("Exclusive list", exclusive));
  layout->addWidget(security_->footer());
  layout->addStretch();
  QWidget* tab = page("tabAccounts", layout);
  security_->orderTabs();
  return tab;
}

QWidget* SettingsDialog::makeScanningTab() {
  auto* start = new QFormLayout;
  scanOnStartup_ = addCheckBox(start, "chkScanOnStartup", "Scan at start and &repeatedly");
  seconds_ = addLineEdit(start, "txtSeconds", "Seconds &between scans:");
  retrieveOnStartup_ = addCheckBox(start, "chkRetrieveOnStartup", "&Download at start");
  // One start-up pass: a scan or a download, never both.
  connect(scanOnStartup_, &QCheckBox::toggled, this, [this](bool on) {
    if (on) retrieveOnStartup_->setChecked(false);
  });
  connect(retrieveOnStartup_, &QCheckBox::toggled, this, [this](bool on) {
    if (on) scanOnStartup_->setChecked(false);
  });

  auto* server = new QFormLayout;
  autoDelete_ = addCheckBox(server, "chkAutoDelete", "Delete spam on the server au&tomatically");
  deleteOnRetrieve_ = addCheckBox(server, "chkDeleteOnRetrieve", "Delete from the server after do&wnload");
  disableReadFromServer_ = addCheckBox(server, "chkDisableReadFromServer", "Don't &open messages on the server");
  audio_ = addCheckBox(server, "chkAudio", "&Play a sound at the end of a pass");
  timeout_ = addLineEdit(server, "txtTimeout", "Server t&imeout (seconds):");
  maxSize_ = addLineEdit(server, "txtMaxSize", "&Largest message (bytes, 0: any):");

  auto* bounce = new QFormLayout;
  bounceSubject_ = addLineEdit(bounce, "txtBounceSubject", "Bounce s&ubject:");
  bouncePrefix_ = addLineEdit(bounce, "txtBouncePrefix", "Bounce se&nder:");

  auto* layout = new QVBoxLayout;
  layout->addWidget(group("At start", start));
  layout->addWidget(group("On the server", server));
  layout->addWidget(group("Bounces", bounce));
  layout->addStretch();
  return page("tabScanning", layout);
}

QWidget* SettingsDialog::makeMessagesTab() {
  auto* ages = new QFormLayout;
  ages_[0] = addLineEdit(ages, "txtAge_0", "Age &1 (days, oldest):");
  ages_[1] = addLineEdit(ages, "txtAge_1", "Age &2 (days):");
  ages_[2] = addLineEdit(ages, "txtAge_2", "Age &3 (days, most recent):");

  auto* fonts = new QFormLayout;
  fontSize_ = fontSizeBox("cmbFontSize");
  fontSize_->setAccessibleName("Scanner list font size");
  fonts->addRow("S&canner list font size:", fontSize_);
  fontName_ = addLineEdit(fonts, "txtFontname", "Message f&ont:");
  messageFontSize_ = fontSizeBox("cmbMsgFontSize");
  messageFontSize_->setAccessibleName("Message font size");
  fonts->addRow("Message font si&ze:", messageFontSize_);

  auto* signature = new QVBoxLayout;
  auto* signatureLabel = new QLabel("Default &signature, added to the mail you write:");
  signature_ = new QPlainTextEdit;
  signature_->setObjectName("txtSignature");
  signature_->setAccessibleName("Default signature");
  signature_->setTabChangesFocus(true);
  signature_->setMaximumHeight(fontMetrics().height() * 6);
  signatureLabel->setBuddy(signature_);
  signature->addWidget(signatureLabel);
  signature->addWidget(signature_);

  auto* layout = new QVBoxLayout;
  layout->addWidget(group("Message ages", ages));
  layout->addWidget(group("Fonts", fonts));
  layout->addWidget(group("Signature", signature));
  layout->addStretch();
  return page("tabMessages", layout);
}

QWidget* SettingsDialog::makeGeneralTab() {
  languages_ = new QListWidget;
  languages_->setObjectName("lstLanguages");
  languages_->setAccessibleName("Language");
  languages_->addItem("English");
  // A few rows are enough; the list scrolls when more languages come.
  languages_->setMaximumHeight(languages_->fontMetrics().height() * 6);
  auto* language = new QFormLayout;
  language->addRow("&Language:", languages_);

  scannerFirst_ = new QRadioButton("S&canner window");
  scannerFirst_->setObjectName("optWindow_0");
  mailerFirst_ = new QRadioButton("Ma&il window");
  mailerFirst_->setObjectName("optWindow_1");
  auto* windows = new QVBoxLayout;
  windows->addWidget(scannerFirst_);
  windows->addWidget(mailerFirst_);

  auto* start = new QFormLayout;
  startMinimised_ = addCheckBox(start, "chkStartMinimised", "Start mi&nimised");
  autoUpdateCheck_ = addCheckBox(start, "chkAutoUpdateCheck", "Check for &updates automatically");

  auto* layout = new QVBoxLayout;
  layout->addLayout(language);
  layout->addWidget(group("Window shown first", windows));
  layout->addWidget(group("Start-up", start));
  layout->addStretch();
  return page("tabGeneral", layout);
}

QWidget* SettingsDialog::makeFoldersTab() {
  auto* folders = new QFormLayout;
  messageStore_ = addLineEdit(folders, "txtMessageStore", "Message s&tore:");
  dataFolder_ = addLineEdit(folders, "txtDataFolder", "&Data folder:");
  filterFolder_ = addLineEdit(folders, "txtFilterFolder", "Fi&lter folder:");
  spamArchive_ = addLineEdit(folders, "txtSpamArchive", "S&pam archive:");
  auto* layout = new QVBoxLayout;
  layout->addLayout(folders);
  layout->addStretch();
  return page("tabFolders", layout);
}

void SettingsDialog::showForm() {
  {
    const QSignalBlocker quiet(account_);
    for (const Account& account : form_.accounts) account_->addItem(accountEntry(account.index, account.title));
    account_->setCurrentIndex(shownAccount_);
  }
  showAccount(shownAccount_);

  const QString language = toQString(form_.language);
  auto found = languages_->findItems(language, Qt::MatchExactly);
  // A language of another install stays as it is.
  if (found.isEmpty()) languages_->addItem(language);
  languages_->setCurrentItem(languages_->findItems(language, Qt::MatchExactly).first());

  messageStore_->setText(toQString(form_.messageStore));
  dataFolder_->setText(toQString(form_.dataFolder));
  filterFolder_->setText(toQString(form_.filterFolder));
  spamArchive_->setText(toQString(form_.spamFolder));
  signature_->setPlainText(toQString(form_.signature).replace("\r\n", "\n"));

  autoUpdateCheck_->setChecked(form_.autoUpdateCheck);
  scanOnStartup_->setChecked(form_.scanOnStartup);
  retrieveOnStartup_->setChecked(form_.retrieveOnStartup && !form_.scanOnStartup);
  disableReadFromServer_->setChecked(form_.disableReadFromServer);
  autoDelete_->setChecked(form_.autoDelete);
  audio_->setChecked(form_.audio);
  startMinimised_->setChecked(form_.startMinimised);
  deleteOnRetrieve_->setChecked(form_.deleteOnRetrieve);
  (form_.showScannerFirst ? scannerFirst_ : mailerFirst_)->setChecked(true);

  seconds_->setText(toQString(form_.seconds));
  maxSize_->setText(toQString(form_.maxSize));
  timeout_->setText(toQString(form_.timeout));
  for (std::size_t i = 0; i < ages_.size(); ++i) ages_[i]->setText(toQString(form_.ages[i]));
  bounceSubject_->setText(toQString(form_.bounceSubject));
  bouncePrefix_->setText(toQString(form_.bouncePrefix));
  showInBox(fontSize_, form_.fontSize);
  showInBox(messageFontSize_, form_.messageFontSize);
  fontName_->setText(toQString(form_.fontName));
}

void SettingsDialog::showAccount(int index) {
  const Account& a = form_.accounts[static_cast<std::size_t>(index)];
  title_->setText(toQString(a.title));
  server_->setText(toQString(a.server));
  popPort_->setText(QString::number(a.popPort));
  userName_->setText(toQString(a.userName));
  password_->setText(toQString(a.password));
  useServer_->setChecked(a.check);
  stopAtLast_->setChecked(a.stopAtLast);
  pipelining_->setChecked(a.pipelining);
  smtp_->setText(toQString(a.smtp));
  smtpPort_->setText(QString::number(a.smtpPort));
  smtpAuth_->setChecked(a.smtpAuth);
  smtpUser_->setText(toQString(a.smtpUserName));
  smtpPassword_->setText(toQString(a.smtpPassword));
  smtpUser_->setEnabled(a.smtpAuth);
  smtpPassword_->setEnabled(a.smtpAuth);
  replyAddress_->setText(toQString(a.replyAddress));
  displayName_->setText(toQString(a.displayName));
  exclusive_[0]->setText(toQString(a.exclusive0));
  exclusive_[1]->setText(toQString(a.exclusive1));
  security_->show(a);
}

void SettingsDialog::keepAccount(int index) {
  Account& a = form_.accounts[static_cast<std::size_t>(index)];
  a.title = boxText(title_);
  a.server = boxText(server_);
  a.popPort = portNumber(popPort_);
  a.userName = boxText(userName_);
  a.password = boxText(password_);
  a.check = useServer_->isChecked();
  a.stopAtLast = stopAtLast_->isChecked();
  a.pipelining = pipelining_->isChecked();
  a.smtp = boxText(smtp_);
  a.smtpPort = portNumber(smtpPort_);
  a.smtpAuth = smtpAuth_->isChecked();
  a.smtpUserName = boxText(smtpUser_);
  a.smtpPassword = boxText(smtpPassword_);
  a.replyAddress = boxText(replyAddress_);
  a.displayName = boxText(displayName_);
  a.exclusive0 = boxText(exclusive_[0]);
  a.exclusive1 = boxText(exclusive_[1]);
  security_->keep(a);
}

void SettingsDialog::onAccountPicked(int index) {
  if (index < 0) return;
  keepAccount(shownAccount_);
  shownAccount_ = index;
  showAccount(index);
}

void SettingsDialog::onTitleEdited(const QString& title) {
  account_->setItemText(shownAccount_, accountEntry(shownAccount_, fromQString(title)));
}

SettingsForm SettingsDialog::formFromBoxes() {
  keepAccount(shownAccount_);
  SettingsForm form = form_;
  form.shownAccount = shownAccount_;
  if (const QListWidgetItem* language = languages_->currentItem()) form.language = fromQString(language->text());
  form.messageStore = boxText(messageStore_);
  form.dataFolder = boxText(dataFolder_);
  form.filterFolder = boxText(filterFolder_);
  form.spamFolder = boxText(spamArchive_);
  // The file keeps the program's line ends.
  form.signature = fromQString(signature_->toPlainText().replace("\n", "\r\n"));

  form.autoUpdateCheck = autoUpdateCheck_->isChecked();
  form.scanOnStartup = scanOnStartup_->isChecked();
  form.retrieveOnStartup = retrieveOnStartup_->isChecked();
  form.disableReadFromServer = disableReadFromServer_->isChecked();
  form.autoDelete = autoDelete_->isChecked();
  form.audio = audio_->isChecked();
  form.startMinimised = startMinimised_->isChecked();
  form.deleteOnRetrieve = deleteOnRetrieve_->isChecked();
  form.showScannerFirst = scannerFirst_->isChecked();

  form.seconds = boxText(seconds_);
  form.maxSize = boxText(maxSize_);
  form.timeout = boxText(timeout_);
  for (std::size_t i = 0; i < ages_.size(); ++i) form.ages[i] = boxText(ages_[i]);
  form.bounceSubject = boxText(bounceSubject_);
  form.bouncePrefix = boxText(bouncePrefix_);
  form.fontSize = boxText(fontSize_);
  form.messageFontSize = boxText(messageFontSize_);
  form.fontName = boxText(fontName_);
  return form;
}

void SettingsDialog::showText(const std::string& text) { ctx_.prompt.ask(text, Buttons::Ok, "Vonel"); }

bool SettingsDialog::storeForm() {
  SettingsForm form = formFromBoxes();
  const FormReview review = reviewSettingsForm(form, ctx_.folders);
  if (review.refusal) {
    showText(*review.refusal);
    return false;
  }
  for (const std::string& notice : review.notices) showText(notice);
  // What was put right shows if the dialog is opened again.
  messageStore_->setText(toQString(form.messageStore));
  spamArchive_->setText(toQString(form.spamFolder));
  filterFolder_->setText(toQString(form.filterFolder));
  dataFolder_->setText(toQString(form.dataFolder));

  writeSettingsForm(form, ctx_.settings, ctx_.folders);
  ctx_.settings.saveSettings(ctx_.settingsFile());
  ctx_.pathSettings.saveSettings(ctx_.pathsFile());
  // Kept in memory only: it reaches the disk with the next save.
  ctx_.settings.set("langID", Value(storableText(form.language)));
  return true;
}

void SettingsDialog::accept() {
  bool accepted = false;
  guardedStep(ctx_.log, log_places::kCmdOkClick, log_places::kSettingsDialogModule,
              [&] { accepted = storeForm(); });
  if (accepted) QDialog::accept();
}

bool showSettingsDialog(AppContext& context, MailController& controller, QWidget* parent) {
  if (!controller.openSettingsAllowed()) return false;
  controller.settingsOpening();
  SettingsDialog dialog(context, parent);
  const bool accepted = dialog.exec() == QDialog::Accepted;
  controller.settingsClosed(accepted);
  return accepted;
}

}  // namespace vonel
