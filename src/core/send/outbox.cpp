#include "core/send/outbox.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/log/log_places.h"
#include "core/message/message_file.h"
#include "core/store/tag_files.h"
#include "core/text/dates.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::send {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kModule = log_places::kOutboxModule;

bool isDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

// Digit runs compare by value, so "00_outbound_10" follows "00_outbound_9".
bool spooledBefore(std::string_view a, std::string_view b) {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    if (isDigit(a[i]) && isDigit(b[j])) {
      const std::size_t runA = std::find_if_not(a.begin() + i, a.end(), isDigit) - a.begin();
      const std::size_t runB = std::find_if_not(b.begin() + j, b.end(), isDigit) - b.begin();
      std::string_view digitsA = a.substr(i, runA - i);
      std::string_view digitsB = b.substr(j, runB - j);
      digitsA.remove_prefix(std::min(digitsA.find_first_not_of('0'), digitsA.size()));
      digitsB.remove_prefix(std::min(digitsB.find_first_not_of('0'), digitsB.size()));
      if (digitsA.size() != digitsB.size()) return digitsA.size() < digitsB.size();
      if (digitsA != digitsB) return digitsA < digitsB;
      i = runA;
      j = runB;
      continue;
    }
    if (a[i] != b[j]) return a[i] < b[j];
    ++i;
    ++j;
  }
  if (a.size() - i != b.size() - j) return a.size() - i < b.size() - j;
  return a < b;
}

}  // namespace

std::string accountDigits(int account) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "%02d", account);
  return digits;
}

std::string outboxFileName(int account, int counter) {
  return accountDigits(account) + "_outbound_" + std::to_string(counter) + ".eml";
}

int freeOutboxCounter(const fs::path& outbox, int account, int from) {
  int counter = from;
  while (files::fileExists(outbox / outboxFileName(account, counter))) ++counter;
  return counter;
}

std::vector<std::string> listOutboxFiles(const fs::path& outbox) {
  std::vector<std::string> names;
  std::error_code ec;
  for (fs::directory_iterator it(outbox, ec), end; !ec && it != end; it.increment(ec)) {
    const std::string name = it->path().filename().string();
    if (name.size() > 4 && text::equalsNoCase(text::right(name, 4), ".eml") && it->is_regular_file(ec)) {
      names.push_back(name);
    }
  }
  std::sort(names.begin(), names.end(), spooledBefore);
  return names;
}

bool accountHasMail(const std::vector<std::string>& names, int account) {
  const std::string digits = accountDigits(account);
  return std::any_of(names.begin(), names.end(), [&](const std::string& name) { return text::left(name, 2) == digits; });
}

std::size_t firstFileOfAccount(const std::vector<std::string>& names, int account) {
  const auto found = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
    return text::val(text::left(name, 2)) == account;
  });
  return static_cast<std::size_t>(found - names.begin());
}

OutboxMessage readOutboxMessage(const fs::path& file, Log& log) {
  OutboxMessage spooled{message::Message(&log), {}};
  guardedStep(log, log_places::kReadOutboxMessage, kModule, [&] {
    spooled.text = files::loadTextFile(file);
    spooled.fields.createFromText(spooled.text, false);
  });
  return spooled;
}

std::string refusalNoteName(std::string_view name) { return std::string(name) + ".refused"; }

void writeRefusalNote(const fs::path& outbox, std::string_view name, std::string_view reply) {
  files::writeTextFile(outbox / refusalNoteName(name), std::string(reply) + "\r\n");
}

bool clearRefusalNote(const fs::path& outbox, std::string_view name) {
  return files::eraseFile(outbox / refusalNoteName(name));
}

std::string fileRoot(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return std::string(dot == std::string_view::npos ? name : name.substr(0, dot));
}

std::string withSentDate(const std::string& raw, const text::DateTime& now) {
  const std::size_t blankLine = text::find(raw, "\r\n\r\n");
  if (blankLine == 0) return raw;
  const std::size_t dateLine = text::findNoCase(raw, "\rDate:");
  if (dateLine != 0 && dateLine < blankLine) return raw;
  return text::left(raw, blankLine - 1) + "\r\nDate: " + text::formatStoreDate(now) + "\r\n\r\n" +
         text::mid(raw, blankLine + 4);
}

SentMessage moveToSentItems(const fs::path& outbox, const fs::path& sentItems, const std::string& name,
                            Log& log, const Clock& clock, files::WriteBatch& writes) {
  const fs::path spooled = outbox / name;
  message::Message message = message::readMessageFull(spooled, log);
  SentMessage sent{false, message.subject, message.toEmail()};
  const text::DateTime now = clock.now();
  message.sendDate = text::formatStoreDate(now);
  message.replaceRawMessage(withSentDate(message.rawMessage(), now));
  message.setFilename(message::getUnusedFilename(true, sentItems, fileRoot(name), ".eml", clock).string());
  message.read = true;
  message::saveMessage(message, log, writes);
  // saveMessage logs its own failure; the copy is checked before the original goes.
  if (!files::fileExists(message.filename())) {
    log.addAction("Unable to file " + name + " in Sent Items; it stays in the outbox", log_places::kMoveToSentItems, kModule);
    return sent;
  }
  if (!files::eraseFile(spooled)) {
    log.addAction("Unable to delete " + name + " from the outbox after filing it", log_places::kMoveToSentItems, kModule);
  } else if (!clearRefusalNote(outbox, name)) {
    log.addAction("Unable to delete " + refusalNoteName(name) + " from the outbox", log_places::kMoveToSentItems, kModule);
  }
  writes.addFolder(outbox);
  store::removeFromUnreadTag(log, outbox);
  sent.filed = true;
  return sent;
}

}  // namespace vonel::send
