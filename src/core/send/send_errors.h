#pragma once
// The errors pending for one send or spool operation, in the order they
// arose. Each text is held once; they are reported together and then dropped.
#include <string>
#include <string_view>
#include <vector>

namespace vonel::send {

class SendErrors {
 public:
  // Removes every CR; a text already pending (any case) is not added twice.
  void add(std::string_view text);
  // Drops every pending entry equal to the text, any case.
  void remove(std::string_view text);
  bool empty() const { return entries_.empty(); }
  bool contains(std::string_view text) const;
  // All entries, each followed by CR LF but the last.
  std::string joined() const;
  void clear() { entries_.clear(); }

 private:
  std::vector<std::string> entries_;
};

}  // namespace vonel::send
