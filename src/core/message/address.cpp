#include "core/message/address.h"

#include <algorithm>

#include "core/text/strings.h"

namespace vonel::message {

std::string extractEmail(std::string_view text) {
  if (text::trimView(text).empty()) return {};
  std::string address;
  if (const std::size_t open = text::find(text, "<")) {
    address = text::trim(text::mid(text, open + 1));
    std::erase(address, '>');
    address = text::lower(address);
  } else {
    address = text::lower(text);
  }
  address = text::replaceAll(address, " @", "@");
  address = text::replaceAll(address, "@ ", "@");
  if (const std::size_t blank = text::find(address, " ")) address = text::left(address, blank - 1);
  return address;
}

std::string extractName(std::string_view text) {
  const std::size_t open = text::find(text, "<");
  std::string name = open >= 2 ? text::trim(text::left(text, open - 1)) : std::string(text);
  std::erase_if(name, [](char c) { return c == '"' || c == '\''; });
  return name;
}

}  // namespace vonel::message
