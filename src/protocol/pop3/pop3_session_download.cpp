// A message downloaded with RETR: written to a temporary file as it comes,
// as the server holds it, read back whole once the terminator is in, judged
// and handed to the owner.
#include <cerrno>

#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/text/strings.h"
#include "protocol/pop3/pop3_session.h"

namespace vonel::pop3 {
namespace {

// Read at once after the failed call, while errno still tells why.
Pop3Failure tempFileFailure(const std::filesystem::path& file) {
  const AppError error = AppError::fromErrno(errno != 0 ? errno : EIO, file.string());
  return Pop3Failure(storeFailure(error.number()), error.description());
}

}  // namespace

void Pop3Session::onRetrLines(const std::string& packet) {
  if (!reply_.downloading) {
    reply_.download.reset();
    reply_.bytesWritten = 0;
    logAction("Opening temporary output file for inbound message");
    const text::DateTime now = ctx_.clock.now();
    const int secondsSinceMidnight = now.hour * 3600 + now.minute * 60 + now.second;
    reply_.tempFileName = ctx_.folders.messageFolderPath / ("mail_" + std::to_string(secondsSinceMidnight) + ".tmp");
    tempFile_.open(reply_.tempFileName, std::ios::binary | std::ios::trunc);
    if (!tempFile_) {
      const Pop3Failure failure = tempFileFailure(reply_.tempFileName);
      events_.onPopError(title(), "Unable to open temporary mail file");
      reportFailure(failure);
      endSession();
      return;
    }
    reply_.downloading = true;
    logAction("Using file handle #1 for this message");
  }
  std::string data;
  const bool complete = reply_.download.decode(packet, data);
  tempFile_.write(data.data(), static_cast<std::streamsize>(data.size()));
  reply_.bytesWritten += data.size();
  if (!tempFile_) {
    const Pop3Failure failure = tempFileFailure(reply_.tempFileName);
    endWithError(failure.kind, "Unable to write temporary mail file");
    return;
  }
  if (complete) onRetrComplete();
}

void Pop3Session::onRetrComplete() {
  tempFile_.close();
  const bool closed = !tempFile_.fail();
  const Pop3Failure writeFailure = tempFileFailure(reply_.tempFileName);
  std::string text = files::loadTextFile(reply_.tempFileName);
  // A full disk shows itself at the latest when the buffered rest is written
  // out: what came back short is no message, and stays on the server.
  if (!closed || text.size() != reply_.bytesWritten) {
    files::eraseFile(reply_.tempFileName);
    reply_.downloading = false;
    endWithError(writeFailure.kind, "Unable to write temporary mail file");
    return;
  }
  files::eraseFile(reply_.tempFileName);
  reply_.downloading = false;

  message::Message message(&ctx_.log, &ctx_.clock);
  message.createFromText(std::move(text), false);
  message.receiveDate = text::formatStoreDate(ctx_.clock.now());
  message.fromAccount = static_cast<std::int16_t>(account_);
  message.read = false;
  if (const auto id = uniqueIds_.find(reply_.currentMessage); id != uniqueIds_.end()) {
    message.serverUniqueId = id->second;
  }
  ++handledCount_;
  message.messageNumThisAcc = handledCount_;
  reply_.replyBuffer.clear();

  if (mode_ == Mode::OneMessage) {
    events_.onProgress("Selected message downloaded");
    handledCount_ = specificNumber_;
    ++specificCount_;
    events_.onSpecificMessage(message);
    sendQuit();
    return;
  }
  logAction("Checking message against server filters");
  serverFilters_.checkMessage(message, true);
  if (!message.ignored && !message.deleted && !message.blockedSender && !message.blockedRecip &&
      !message.suspicious && message.destFolder.empty()) {
    logAction("Checking message against local filters");
    localFilters_.checkMessage(message, false);
  }
  logAction("Raising event to pass downloaded message to calling routine");
  const bool kept = events_.onMessageReceived(message);
  const long n = reply_.currentMessage;
  events_.onProgress("Downloaded Message " + ofTotal(n) + " to " +
                   (message.destFolder.empty() ? std::string("Inbox") : message.destFolder));
  if (reply_.currentMessage > reply_.messageCount) reply_.messageCount = reply_.currentMessage;
  events_.onProgressBar(reply_.currentMessage, reply_.messageCount);
  // Sent without waiting: its "+OK" comes in ahead of the next reply.
  if (kept && !message.ignored && deleteOnRetrieve()) {
    send("DELE " + std::to_string(n));
  }
  ++reply_.currentMessage;
  requestNextHeader(false);
}

void Pop3Session::closeTempFile(bool erase) {
  if (!reply_.downloading) return;
  tempFile_.close();
  reply_.downloading = false;
  if (erase) files::eraseFile(reply_.tempFileName);
}

}  // namespace vonel::pop3
