#include "core/send/message_id.h"

#include <cctype>
#include <cstdio>
#include <random>

namespace vonel::send {
namespace {

std::string domainOf(std::string_view address) {
  const std::size_t at = address.rfind('@');
  std::string domain;
  if (at == std::string_view::npos) return "localhost";
  for (const char c : address.substr(at + 1)) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '.' || c == '-') domain += c;
  }
  return domain.empty() ? "localhost" : domain;
}

}  // namespace

std::string newMessageId(std::string_view address, const text::DateTime& now) {
  std::random_device random;
  char text[128];
  std::snprintf(text, sizeof text, "<%04d%02d%02d%02d%02d%02d.%08x%08x%08x@", now.year, now.month, now.day, now.hour,
                now.minute, now.second, random(), random(), random());
  return text + domainOf(address) + ">";
}

}  // namespace vonel::send
