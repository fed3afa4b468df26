#include "core/store/suppress_message.h"

#include <string>

#include "core/text/shared_text.h"

namespace vonel::store {

bool suppressMessage(const message::Message& message, const SettingsStore& settings) {
  const std::string account = std::to_string(message.fromAccount);
  const std::string first = settings.get("Exclusive0_" + account, Value("")).text();
  const std::string second = settings.get("Exclusive1_" + account, Value("")).text();
  if (first.empty() && second.empty()) return false;
  for (const std::string& address : {first, second}) {
    if (address.empty()) continue;
    if (text::containsNoCase(message.toEmail(), address) || text::containsNoCase(message.cc, address)) return false;
  }
  return true;
}

}  // namespace vonel::store
