// What the scanner's list does with the headers of the last scan: shows
// them, blocks or ignores their addresses, and judges them all again
// without going to the servers.
#include "app/mail_controller.h"

#include "core/message/address.h"
#include "core/rules/rule_engine.h"

namespace vonel {
namespace {

std::string addressFor(const message::Message& message, BlockTarget target) {
  switch (target) {
    case BlockTarget::Sender:
    case BlockTarget::SenderDomain:
      return message::extractEmail(message.from);
    case BlockTarget::Recipient:
    case BlockTarget::RecipientDomain:
      return message::extractEmail(message.toEmail());
  }
  return {};
}

}  // namespace

const message::Message* MailController::scannedMessage(const std::string& key) const {
  if (key.empty() || !tally_.messages.contains(key)) return nullptr;
  return tally_.messages.item(key).get();
}

std::string MailController::accountServer(int account) const {
  if (account < 0 || account >= kAccountCount) return {};
  return ctx_.settings.get(accountKey("SERVER", account), Value("")).text();
}

bool MailController::blocked(BlockTarget target, const std::string& key) const {
  const message::Message* message = scannedMessage(key);
  if (!message) return false;
  const std::string address = addressFor(*message, target);
  switch (target) {
    case BlockTarget::Sender: return serverFilters_.blockedSender(address);
    case BlockTarget::SenderDomain: return serverFilters_.blockedDomain(address);
    case BlockTarget::Recipient: return serverFilters_.blockedRecipient(address);
    case BlockTarget::RecipientDomain: return serverFilters_.blockedRecipientDomain(address);
  }
  return false;
}

// Rows are found by their key, so a list re-sorted or half rebuilt can't
// make a block hit the wrong message.
void MailController::blockOrUnblock(BlockTarget target, bool block, const std::vector<std::string>& keys) {
  for (const std::string& key : keys) {
    const message::Message* message = scannedMessage(key);
    if (!message) continue;
    const std::string address = addressFor(*message, target);
    if (address.empty()) continue;
    switch (target) {
      case BlockTarget::Sender:
        block ? serverFilters_.blockSender(address) : serverFilters_.unblockSender(address);
        break;
      case BlockTarget::SenderDomain:
        block ? serverFilters_.blockSenderDomain(address) : serverFilters_.unblockSenderDomain(address);
        break;
      case BlockTarget::Recipient:
        block ? serverFilters_.blockRecipient(address) : serverFilters_.unblockRecipient(address);
        break;
      case BlockTarget::RecipientDomain:
        block ? serverFilters_.blockRecipientDomain(address) : serverFilters_.unblockRecipientDomain(address);
        break;
    }
  }
  rescanCachedMail();
}

bool MailController::recipientIgnored(const std::string& key) const {
  const message::Message* message = scannedMessage(key);
  return message && serverFilters_.ignore(message::extractEmail(message->toEmail()));
}

void MailController::ignoreOrNot(bool undo, const std::string& key) {
  if (const message::Message* message = scannedMessage(key)) {
    const std::string address = message::extractEmail(message->toEmail());
    undo ? serverFilters_.unignoreRecipient(address) : serverFilters_.ignoreRecipient(address);
  }
  rescanCachedMail();
}

// The counts start again, so the tray and the row numbers speak of the list
// as it now stands rather than adding it to what the scan counted.
void MailController::rescanCachedMail() {
  std::array<bool, kAccountCount> hadMessages{};
  for (int account = 0; account < kAccountCount; ++account) hadMessages[account] = tally_.byAccount[account] > 0;
  tally_.listed = 0;
  tally_.byAccount.fill(0);
  tally_.passedMail = false;
  tray_.restartCount();
  windows_.setupListView();
  for (int account = 0; account < kAccountCount; ++account) {
    if (hadMessages[account]) windows_.addServerToLists(accountTitle(ctx_.settings, account));
  }
  for (const auto& [key, message] : tally_.messages) {
    serverFilters_.checkMessage(*message, true);
    countAndList(*message);
  }
  tray_.showLargeS();
}

}  // namespace vonel
