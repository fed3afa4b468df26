// The mail window as the scanner window keeps it: made when first shown, fed
// with the pass's progress and the new mail, its requests sent on to the
// controller.
#include <QApplication>
#include <QTreeView>

#include "app/mail_controller.h"
#include "app/qtext.h"
#include "ui/mailer/mailer_window.h"
#include "ui/scanner/scanner_window.h"
#include "ui/scanner/tray_icon.h"

namespace vonel {

bool ScannerWindow::mailerLoaded() const { return mailer_ != nullptr; }

void ScannerWindow::showMailer() {
  if (!mailer_) {
    mailer_ = std::make_unique<MailerWindow>(ctx_, host_, model_);
    connectMailer();
    mailer_->setupAccountMenus(accountMenuEntries(ctx_.settings));
    mailer_->load();
    return;
  }
  mailer_->show();
  mailer_->raise();
  mailer_->activateWindow();
}

store::NewMessageSink* ScannerWindow::openMailer() { return mailer_.get(); }

void ScannerWindow::sendingFinished() {
  if (mailer_) mailer_->notifyFinishedSendingMail();
}

void ScannerWindow::connectMailer() {
  MailerWindow* mailer = mailer_.get();
  const auto command = [this, mailer](auto signal, auto action) {
    connect(mailer, signal, this, [this, action](auto... account) {
      if (controller_) (controller_->*action)(account...);
    });
  };
  command(&MailerWindow::scan, &MailController::scan);
  command(&MailerWindow::scanAndDelete, &MailController::scanAndDelete);
  command(&MailerWindow::stopMail, &MailController::stopPass);
  command(&MailerWindow::sendAndReceive, &MailController::toolbarSendReceive);
  command(&MailerWindow::sendReceiveAndDelete, &MailController::toolbarSendReceiveDelete);
  command(&MailerWindow::sendReceiveAndDeleteFrom, &MailController::downloadAndDeleteFrom);
  command(&MailerWindow::downloadFrom, &MailController::downloadFrom);
  command(&MailerWindow::uploadMail, &MailController::sendOutbox);
  command(&MailerWindow::downloadMailNoUpload, &MailController::downloadOnly);
  command(&MailerWindow::upDownWithClear, &MailController::downloadDeleteAndSend);
  connect(mailer, &MailerWindow::showScanner, this, [this] {
    mailer_->hideForm();
    showMain();
  });
  connect(mailer, &MailerWindow::showSettings, this, &ScannerWindow::showSettings);
  connect(mailer, &MailerWindow::quitProgram, this, &ScannerWindow::onExitTriggered);
  connect(mailer, &MailerWindow::readServerMessage, this, [this](const QModelIndex& index) {
    list_->setCurrentIndex(model_.index(index.row(), 0));
    if (const message::Message* message = currentMessage()) showMessage(*message);
  });
  // Without a tray a hidden mail window would leave nothing to reach the program by.
  connect(mailer, &MailerWindow::hidden, this, [this] {
    if (!tray_ && !leaving_) showMinimized();
  });
}

}  // namespace vonel
