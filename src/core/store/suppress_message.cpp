#include "core/store/suppress_message.h"

#include <string>

#include "core/text/shared_text.h"

namespace vonel::store {

bool SuppressMessage(const message::clsMessage& message, const cSHAREDSettings& settings) {
  const std::string account = std::to_string(message.FromAccount);
  const std::string first = settings.sGet("Exclusive0_" + account, Value("")).text();
  const std::string second = settings.sGet("Exclusive1_" + account, Value("")).text();
  if (first.empty() && second.empty()) return false;
  for (const std::string& address : {first, second}) {
    if (address.empty()) continue;
    if (text::Contains(message.To_Email(), address) || text::Contains(message.CC, address)) return false;
  }
  return true;
}

}  // namespace vonel::store
