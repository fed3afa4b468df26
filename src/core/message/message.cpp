#include "core/message/message.h"

#include <algorithm>

#include "core/log/log_places.h"
#include "core/message/mime_walk.h"
#include "core/message/send_date.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::message {
namespace {

constexpr std::string_view kModule = log_places::kMessageModule;
// Positions were held in 16-bit signed integers.
constexpr std::size_t kLargestPosition = 32767;

const std::shared_ptr<const std::string>& emptyText() {
  static const auto empty = std::make_shared<const std::string>();
  return empty;
}

}  // namespace

Message::Message(Log* log, const Clock* clock)
    : log_(log), clock_(clock), raw_(emptyText()), messageText_(emptyText()), bodySource_(emptyText()) {}

void Message::logAction(std::string_view text, std::string_view procedure) const {
  if (log_) log_->addAction(text, procedure, kModule);
}

void Message::logFailure(const AppError& error, std::string_view procedure) const {
  if (log_) vonel::logFailure(*log_, error, procedure, kModule);
}

void Message::clearForParse(bool headersOnly) {
  strippedBody.clear();
  htmlStrippedBody.clear();
  mime_ = MimeContent{};
  hasAttachment = false;
  headerOnly = headersOnly;
  received.clear();
  xSpamStatus.clear();
  xSpamReport.clear();
  domainKey.clear();
  read = false;
  tags_.clear();
  highPriority = false;
  contentTypeMain.clear();
  // Replied is kept on purpose: a reused object remembers it.
}

void Message::createFromText(std::string text, bool headerOnly) {
  try {
    clearForParse(headerOnly);
    raw_ = std::make_shared<const std::string>(std::move(text));
    size = std::max(1.0f, static_cast<float>(text::roundHalfEven(static_cast<double>(raw_->size()) / 1024.0)));

    std::size_t blankLine = raw_->find("\r\n\r\n");
    if (blankLine != std::string::npos && blankLine + 1 > kLargestPosition) {
      logFailure(AppError(error_number::kOverflow, "Overflow"), log_places::kCreateFromText);
      blankLine = std::string::npos;
    }
    if (blankLine == std::string::npos) {
      logAction("Invalid message format", log_places::kCreateFromText);
      headers.clear();
      return;
    }
    headers = raw_->substr(0, blankLine);
    bodySource_ = raw_;
    bodyOffset_ = blankLine + 4;
    messageText_ = raw_;
    // The header block is under 32767 characters here, so no colon in it can
    // lie beyond the 16-bit limit either.
    parseHeaderLines();

    if (!headerOnly) {
      newDecodePart(*raw_, mime_);
      if (!mime_.attachmentNames.empty()) hasAttachment = true;
      createStrippedBody();
    }
  } catch (...) {
    logFailure(AppError::from(std::current_exception()), log_places::kCreateFromText);
  }
}

std::string Message::attachmentFilenames() const {
  std::string names;
  for (const auto& name : mime_.attachmentNames) names += name + " * ";
  return names;
}

text::DateTime Message::sendDateInLocalZone() const { return sendDateInZone(standardZoneBias()); }

text::DateTime Message::sendDateInZone(int biasMinutes) const { return localSendDate(sendDate, biasMinutes); }

const MimePart& Message::mimePart(std::size_t index) const {
  static const MimePart kEmpty;
  return index >= 1 && index <= mime_.parts.size() ? mime_.parts[index - 1] : kEmpty;
}

void Message::addAttachment(std::string name) { mime_.attachmentNames.push_back(std::move(name)); }

void Message::replaceRawMessage(std::string text) { raw_ = std::make_shared<const std::string>(std::move(text)); }

std::string pathInReadCase(std::string path, bool read) {
  // Only the name itself carries the read state; the folders keep their case.
  const std::size_t nameStart = path.find_last_of("\\/") + 1;  // npos + 1 is 0
  const auto fold = read ? text::lowerByte : text::upperByte;
  std::transform(path.begin() + static_cast<std::ptrdiff_t>(nameStart), path.end(),
                 path.begin() + static_cast<std::ptrdiff_t>(nameStart), fold);
  return path;
}

std::string Message::filename() const { return pathInReadCase(filename_, read); }

std::string_view Message::messageBody() const {
  return std::string_view(*bodySource_).substr(std::min(bodyOffset_, bodySource_->size()));
}

void Message::setMessageBody(std::string body) {
  bodySource_ = std::make_shared<const std::string>(std::move(body));
  bodyOffset_ = 0;
}

void Message::setMessageText(std::string text) { messageText_ = std::make_shared<const std::string>(std::move(text)); }

}  // namespace vonel::message
