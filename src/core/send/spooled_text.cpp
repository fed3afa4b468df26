#include "core/send/spooled_text.h"

#include <algorithm>
#include <vector>

#include "core/message/address.h"
#include "core/send/data_text.h"
#include "core/text/strings.h"

namespace vonel::send {

namespace {

void removeCrLfFromEnd(std::string& text) {
  while (!text.empty() && (text.back() == '\r' || text.back() == '\n')) text.pop_back();
}

std::string joined(const std::vector<std::string>& items) {
  std::string list;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i > 0) list += ';';
    list += items[i];
  }
  return list;
}

}  // namespace

AddressList splitAddressList(std::string_view list) {
  if (list.empty()) return {};
  std::vector<std::string> addresses;
  std::vector<std::string> names;
  for (const std::string& piece : text::split(list, ";")) {
    addresses.push_back(message::extractEmail(piece));
    const std::string name = message::extractName(piece);
    names.push_back(name.empty() ? joined(addresses) : name);
  }
  return {joined(addresses), joined(names)};
}

std::string addressesOf(std::string_view list) {
  if (list.empty()) return {};
  std::vector<std::string> addresses;
  for (const std::string& piece : text::split(list, ";")) addresses.push_back(message::extractEmail(piece));
  return joined(addresses);
}

std::string cutBccHeader(const std::string& text) {
  const std::size_t bcc = text::findNoCase(text, "Bcc:");
  if (bcc == 0) return text;
  const std::size_t nextColon = text::find(text, ":", bcc + 5);
  if (nextColon == 0) return text;
  const std::size_t lineEnd = text::findLast(text, "\r\n", nextColon - 1);
  if (lineEnd == 0 || lineEnd < bcc) return text;
  return text::left(text, bcc - 1) + text::mid(text, lineEnd + 2);
}

std::string wireText(std::string text) {
  removeCrLfFromEnd(text);
  std::erase(text, '\n');
  return fitForData(text::replaceAll(text, "\r", "\r\n"));
}

}  // namespace vonel::send
