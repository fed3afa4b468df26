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

class clsMessages {
 public:
  using MessagePtr = std::shared_ptr<clsMessage>;

  // An empty key adds the message without one. A key already present throws AppError.
  MessagePtr Add(MessagePtr message, std::string_view key = {});
  // Both throw AppError when there is no such item.
  const MessagePtr& Item(std::size_t index) const;
  const MessagePtr& Item(std::string_view key) const;
  std::size_t Count() const { return items_.size(); }
  bool Contains(std::string_view key) const { return items_.contains(key); }
  void Remove(std::size_t index);
  void Remove(std::string_view key);

  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

 private:
  text::KeyedCollection<MessagePtr> items_;
  std::size_t keylessCount_ = 0;
};

}  // namespace vonel::message
