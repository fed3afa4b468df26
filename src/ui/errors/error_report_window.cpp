#include "ui/errors/error_report_window.h"

#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>

#include "app/qtext.h"
#include "core/context/app_context.h"
#include "core/files/atomic_file.h"
#include "core/log/log_tail.h"
#include "ui/log/log_window.h"

namespace vonel {
namespace {

// The newest part of the log is what explains an error; all of it could be
// hundreds of megabytes.
constexpr std::size_t kLogShownBytes = 256 * 1024;

QPlainTextEdit* readOnlyText(const char* name, const char* accessibleName, QWidget* parent) {
  auto* edit = new QPlainTextEdit(parent);
  edit->setObjectName(name);
  edit->setAccessibleName(accessibleName);
  edit->setReadOnly(true);
  edit->setTabChangesFocus(true);
  edit->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  return edit;
}

QPushButton* button(const char* name, const char* caption, QWidget* parent) {
  auto* push = new QPushButton(caption, parent);
  push->setObjectName(name);
  push->setAutoDefault(false);
  return push;
}

}  // namespace

ErrorReportWindow::ErrorReportWindow(AppContext& context, QWidget* parent)
    : QDialog(parent),
      context_(context),
      address_(bugReportAddress(context.settings)),
      txtError_(readOnlyText("txtError", "Error", this)),
      txtLog_(readOnlyText("txtLog", "Log", this)),
      lblUserMessage_(new QLabel("Your &comments:", this)),
      txtUserMessage_(new QPlainTextEdit(this)) {
  setObjectName("fSHAREDErrorRpt");
  setWindowTitle(toQString(context.log.info().title) + " - Error Report");

  auto* title = new QLabel("An error has ocurred:", this);
  title->setObjectName("lblTitle");
  title->setBuddy(txtError_);
  auto* logLabel = new QLabel("L&og file:", this);
  logLabel->setBuddy(txtLog_);

  context.log.writeActionsToLog();
  logText_ = readLogTail(context.log.currentLogFilename(), kLogShownBytes).value_or("No log file");
  txtLog_->setPlainText(toQString(logText_));
  txtLog_->setLineWrapMode(QPlainTextEdit::NoWrap);
  txtLog_->moveCursor(QTextCursor::End);
  txtLog_->ensureCursorVisible();

  txtUserMessage_->setObjectName("txtUserMessage");
  txtUserMessage_->setAccessibleName("Your comments");
  txtUserMessage_->setTabChangesFocus(true);
  lblUserMessage_->setBuddy(txtUserMessage_);
  lblUserMessage_->hide();
  txtUserMessage_->hide();

  auto* cmdEmail = button("cmdEmail", "&Submit Error Report", this);
  cmdEmail->setEnabled(!address_.empty());
  if (address_.empty()) cmdEmail->setToolTip("No address for bug reports is set (BugReportAddress).");
  auto* note = new QLabel("You will get a chance to preview the report before sending.", this);
  note->setObjectName("lblPreviewNote");
  note->setWordWrap(true);
  auto* cmdViewReport = button("cmdViewReport", "View &Report", this);
  auto* cmdViewLog = button("cmdViewLog", "View &Log", this);
  auto* cmdShowComments = button("cmdShowComments", "&Add Comments", this);
  auto* cmdHelp = button("cmdHelp", "&Help", this);
  auto* cmdExit = button("cmdExit", "&Close", this);

  connect(cmdEmail, &QPushButton::clicked, this, &ErrorReportWindow::onEmail);
  connect(cmdViewReport, &QPushButton::clicked, this, &ErrorReportWindow::onViewReport);
  connect(cmdViewLog, &QPushButton::clicked, this, &ErrorReportWindow::onViewLog);
  connect(cmdShowComments, &QPushButton::clicked, this, &ErrorReportWindow::onShowComments);
  connect(cmdHelp, &QPushButton::clicked, this, &ErrorReportWindow::onHelp);
  connect(cmdExit, &QPushButton::clicked, this, &QDialog::accept);

  auto* submitRow = new QHBoxLayout;
  submitRow->addWidget(cmdEmail);
  submitRow->addWidget(note, 1);
  auto* buttonRow = new QHBoxLayout;
  buttonRow->addWidget(cmdViewReport);
  buttonRow->addWidget(cmdViewLog);
  buttonRow->addWidget(cmdShowComments);
  buttonRow->addStretch(1);
  buttonRow->addWidget(cmdHelp);
  buttonRow->addWidget(cmdExit);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(title);
  layout->addWidget(txtError_, 1);
  layout->addWidget(logLabel);
  layout->addWidget(txtLog_, 2);
  layout->addWidget(lblUserMessage_);
  layout->addWidget(txtUserMessage_, 1);
  layout->addLayout(submitRow);
  layout->addLayout(buttonRow);
  resize(640, 520);
  cmdExit->setFocus();
}

void ErrorReportWindow::showError(std::string_view text, std::string_view details) {
  errorText_ = text;
  if (!details.empty()) {
    errorText_ += "\r\n";
    errorText_ += details;
  }
  txtError_->setPlainText(toQString(errorText_));
}

ErrorReport ErrorReportWindow::report() const {
  return {errorText_, fromQString(txtUserMessage_->toPlainText()), logText_};
}

std::string ErrorReportWindow::reportText() const {
  return errorReportText(context_.log.info(), report(), address_);
}

QString ErrorReportWindow::reportFile() { return QDir(QDir::tempPath()).filePath("FullLog.txt"); }

void ErrorReportWindow::writeReportFile() {
  guardedStep(context_.log, "WriteReportFile", "ErrorReportWindow",
              [&] { files::writeTextFile(reportFile().toStdString(), reportText(), files::Durability::Unsynced); });
}

void ErrorReportWindow::onEmail() {
  writeReportFile();
  const std::string link =
      errorReportMailLink(context_.log.info(), report(), address_, fromQString(QDir::toNativeSeparators(reportFile())));
  // Without a mail program the report is shown instead, with the address
  // to send it to in its last lines.
  if (!QDesktopServices::openUrl(QUrl(toQString(link)))) onViewReport();
}

void ErrorReportWindow::onViewReport() {
  writeReportFile();
  if (reportView_ == nullptr) {
    reportView_ = new QDialog(this);
    reportView_->setObjectName("ReportView");
    reportView_->setWindowTitle("Error Report");
    auto* text = readOnlyText("txtReport", "Report", reportView_);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, reportView_);
    connect(buttons, &QDialogButtonBox::rejected, reportView_, &QDialog::reject);
    auto* layout = new QVBoxLayout(reportView_);
    layout->addWidget(text);
    layout->addWidget(buttons);
    reportView_->resize(640, 480);
  }
  reportView_->findChild<QPlainTextEdit*>("txtReport")->setPlainText(toQString(reportText()));
  reportView_->show();
  reportView_->raise();
}

void ErrorReportWindow::onViewLog() { showLogWindow(context_, this); }

void ErrorReportWindow::onShowComments() {
  lblUserMessage_->show();
  txtUserMessage_->show();
  txtUserMessage_->setFocus();
}

void ErrorReportWindow::onHelp() {
  auto* box = new QMessageBox(QMessageBox::Information, windowTitle(),
                              "This window shows an error the program ran into, with the end of its log.\n\n"
                              "Submit Error Report opens a new mail to the bug report mailbox holding the report; "
                              "nothing is sent until you send that mail yourself.\n"
                              "View Report shows the report and saves it as FullLog.txt in the temporary folder.\n"
                              "Add Comments lets you say what you were doing when the error came.",
                              QMessageBox::Ok, this);
  box->setObjectName("ErrorReportHelp");
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

void showErrorReportWindow(AppContext& context, std::string_view text, std::string_view details, QWidget* parent) {
  ErrorReportWindow window(context, parent);
  window.showError(text, details);
  window.exec();
}

}  // namespace vonel
