#include "core/message/mailto_link.h"

#include <optional>

#include "core/text/strings.h"

namespace vonel::message {
namespace {

std::optional<int> hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return std::nullopt;
}

// "%" and two hex digits become the byte; a "%" without them stays as it is,
// and "+" is a plus sign in a mail link, not a blank.
std::string percentDecoded(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size()) {
      const auto high = hexValue(text[i + 1]);
      const auto low = hexValue(text[i + 2]);
      if (high && low) {
        out += static_cast<char>(*high * 16 + *low);
        i += 2;
        continue;
      }
    }
    out += text[i];
  }
  return out;
}

bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == '\x7F'; }

// A header's text on one line.
std::string singleLine(std::string text) {
  for (char& c : text) {
    if (isControl(c)) c = ' ';
  }
  return text::trim(text);
}

std::string withoutNuls(std::string text) {
  std::erase(text, '\0');
  return text;
}

void addAddresses(std::string& to, const std::string& more) {
  if (more.empty()) return;
  if (!to.empty()) to += ", ";
  to += more;
}

}  // namespace

ComposeRequest decodeMailto(std::string_view link) {
  ComposeRequest request;
  const std::size_t question = link.find('?');
  request.to = singleLine(percentDecoded(link.substr(0, question)));
  if (question == std::string_view::npos) return request;

  bool haveSubject = false;
  bool haveBody = false;
  std::string_view fields = link.substr(question + 1);
  while (!fields.empty()) {
    const std::size_t end = fields.find('&');
    const std::string_view field = fields.substr(0, end);
    fields.remove_prefix(end == std::string_view::npos ? fields.size() : end + 1);
    const std::size_t equals = field.find('=');
    if (equals == std::string_view::npos) continue;
    const std::string name = percentDecoded(field.substr(0, equals));
    const std::string value = percentDecoded(field.substr(equals + 1));
    if (text::equalsNoCase(name, "to")) {
      addAddresses(request.to, singleLine(value));
    } else if (text::equalsNoCase(name, "subject") && !haveSubject) {
      request.subject = singleLine(value);
      haveSubject = true;
    } else if (text::equalsNoCase(name, "body") && !haveBody) {
      request.body = withoutNuls(value);
      haveBody = true;
    }
  }
  return request;
}

}  // namespace vonel::message
