#include "app/outbox_upload.h"

#include "app/qtext.h"
#include "app/status_line.h"

namespace vonel {

OutboxUpload::OutboxUpload(AppContext& context, AppWindows& windows)
    : windows_(windows), sender_(context, *this) {}

void OutboxUpload::start() {
  running_ = true;
  sender_.sendOutbox();
}

void OutboxUpload::cancel() {
  running_ = false;
  sender_.cancelSend();
}

void OutboxUpload::onSendProgress(const std::string& text) {
  windows_.setStatusText(text);
  emit sendProgress(toQString(text));
}

void OutboxUpload::onSendFailed(const std::string& text) {
  const std::string shown = withoutLineEnds(text);
  emit sendFailed(toQString(shown));
  // A missing server is reported while the walk still goes on to its end.
  if (!sender_.sending()) ended(shown);
}

void OutboxUpload::onNoMailToSend() { ended("No mail to send"); }

void OutboxUpload::onSendingFinished() { ended("Finished sending mail"); }

void OutboxUpload::ended(const std::string& text) {
  running_ = false;
  windows_.setStatusText(text);
  windows_.sendingFinished();
  emit sendEnded();
}

}  // namespace vonel
