#include "core/send/spooled_text.h"

#include <algorithm>
#include <vector>

#include "core/message/address.h"
#include "core/message/store_header_names.h"
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

bool isStoreHeader(std::string_view line) {
  const std::size_t colon = line.find(':');
  if (colon == std::string_view::npos) return false;
  const std::string_view name = text::trimView(line.substr(0, colon));
  return std::any_of(message::kStoreHeaderNames.begin(), message::kStoreHeaderNames.end(),
                     [&](std::string_view storeName) { return text::equalsNoCase(name, storeName); });
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

std::string withoutStoreHeaders(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  bool dropping = false;
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t lineFeed = text.find('\n', at);
    const std::size_t next = lineFeed == std::string_view::npos ? text.size() : lineFeed + 1;
    const std::string_view line = text.substr(at, next - at);
    if (line == "\n" || line == "\r\n") break;  // the blank line that ends the header
    const bool folded = line.front() == ' ' || line.front() == '\t';
    if (!folded) dropping = isStoreHeader(line);
    if (!dropping) out.append(line);
    at = next;
  }
  out.append(text.substr(at));
  return out;
}

std::string wireText(std::string text) {
  removeCrLfFromEnd(text);
  std::erase(text, '\n');
  return cutLongLines(text::replaceAll(text, "\r", "\r\n"));
}

}  // namespace vonel::send
