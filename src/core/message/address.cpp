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

std::string firstAddressIn(std::string_view text) {
  const auto at = text.find('@');
  if (at == std::string_view::npos) return {};
  const auto blankBefore = text.rfind(' ', at);
  const auto start = blankBefore == std::string_view::npos ? 0 : blankBefore + 1;
  const auto blankAfter = text.find(' ', at);
  std::string word = text::trim(text.substr(start, blankAfter == std::string_view::npos ? std::string_view::npos
                                                                                        : blankAfter - start));
  if (const auto open = word.find('<'); open != std::string::npos) word.erase(0, open + 1);
  if (const auto close = word.find('>'); close != std::string::npos) word.erase(close);
  return word;
}

}  // namespace vonel::message
