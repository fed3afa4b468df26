// Any bytes as a message, as one header field and as a body: tokenised into
// a fresh small table, as scoring does.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/bayes/tokeniser.h"
#include "core/message/message.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  vonel::bayes::WordTable table;
  table.initSmall();
  vonel::message::Message message;
  message.createFromText(bytes, false);
  vonel::bayes::hashMessage(table, message, false);
  for (const char* prefix : {"RCT*", "HDR*", "CT*", "FRM*", ""}) vonel::bayes::breakAndHash(table, bytes, prefix);
  vonel::bayes::hashUrls(table, bytes);
  return 0;
}
