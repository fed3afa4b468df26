#include "core/message/message_list.h"

#include "core/log/app_error.h"

namespace vonel::message {
namespace {

constexpr int kDuplicateKey = 457;

// Keyless items still need a key of their own in the collection; this
// prefix can't begin a key that comes from mail or a file name.
constexpr char kKeylessMark = '\x01';

[[noreturn]] void throwNoSuchItem() {
  throw AppError(error_number::kInvalidCall, "Invalid procedure call or argument");
}

void checkPosition(std::size_t index, std::size_t count) {
  if (index == 0 || index > count) throw AppError(error_number::kSubscriptOutOfRange, "Subscript out of range");
}

}  // namespace

MessageList::MessagePtr MessageList::add(MessagePtr message, std::string_view key) {
  std::string itemKey = key.empty() ? kKeylessMark + std::to_string(++keylessCount_) : std::string(key);
  if (!items_.add(std::move(itemKey), message)) {
    throw AppError(kDuplicateKey, "This key is already associated with an element of this collection");
  }
  return message;
}

const MessageList::MessagePtr& MessageList::item(std::size_t index) const {
  checkPosition(index, items_.size());
  return items_.at(index - 1).value;
}

const MessageList::MessagePtr& MessageList::item(std::string_view key) const {
  const MessagePtr* found = items_.find(key);
  if (!found) throwNoSuchItem();
  return *found;
}

void MessageList::remove(std::size_t index) {
  checkPosition(index, items_.size());
  items_.removeAt(index - 1);
}

void MessageList::remove(std::string_view key) {
  if (!items_.remove(key)) throwNoSuchItem();
}

}  // namespace vonel::message
