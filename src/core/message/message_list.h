#pragma once
// A list of messages reached by 1-based position or by a key that ignores
// case, in the order they were added. Messages are shared: the list, a
// window and a cache may all hold the same one.
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "core/message/message.h"
#include "core/text/keyed_collection.h"

namespace vonel::message {

class MessageList {
 public:
  using MessagePtr = std::shared_ptr<Message>;

  // An empty key adds the message without one. A key already present throws AppError.
  MessagePtr add(MessagePtr message, std::string_view key = {});
  // Both throw AppError when there is no such item.
  const MessagePtr& item(std::size_t index) const;
  const MessagePtr& item(std::string_view key) const;
  std::size_t count() const { return items_.size(); }
  bool contains(std::string_view key) const { return items_.contains(key); }
  void remove(std::size_t index);
  void remove(std::string_view key);

  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

 private:
  text::KeyedCollection<MessagePtr> items_;
  std::size_t keylessCount_ = 0;
};

}  // namespace vonel::message
