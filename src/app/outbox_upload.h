#pragma once
// Sending the outbox on the user's word: the upload runs from the moment it is
// asked for until the sender reports its end, and each step is shown and
// passed on.
#include <QObject>
#include <QString>
#include <string>

#include "app/app_windows.h"
#include "app/smtp/outbox_sender.h"

namespace vonel {

class OutboxUpload final : public QObject, private OutboxListener {
  Q_OBJECT

 public:
  OutboxUpload(AppContext& context, AppWindows& windows);

  void start();
  // Shutdown's way: the upload counts as ended at once.
  void cancel();
  bool running() const { return running_; }
  // The outbox writer and sender.
  OutboxSender& sender() { return sender_; }

 signals:
  // A step of sending, for display.
  void sendProgress(const QString& text);
  // Sending stopped on an error.
  void sendFailed(const QString& text);
  // running() has gone back to false.
  void sendEnded();

 private:
  void onSendProgress(const std::string& text) override;
  void onSendFailed(const std::string& text) override;
  void onNoMailToSend() override;
  void onSendingFinished() override;
  void onCertificateUntrusted(const UntrustedCertificate& certificate) override {
    windows_.certificateUntrusted(certificate);
  }
  void ended(const std::string& text);

  AppWindows& windows_;
  OutboxSender sender_;
  bool running_ = false;
};

}  // namespace vonel
