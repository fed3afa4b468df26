#include "core/send/send_errors.h"

#include <algorithm>

#include "core/text/strings.h"

namespace vonel::send {

void SendErrors::add(std::string_view text) {
  std::string held = text::replaceAll(text, "\r", "");
  if (!contains(held)) entries_.push_back(std::move(held));
}

void SendErrors::remove(std::string_view text) {
  std::erase_if(entries_, [&](const std::string& entry) { return text::equalsNoCase(entry, text); });
}

bool SendErrors::contains(std::string_view text) const {
  return std::any_of(entries_.begin(), entries_.end(),
                     [&](const std::string& entry) { return text::equalsNoCase(entry, text); });
}

std::string SendErrors::joined() const {
  std::string all;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (i > 0) all += "\r\n";
    all += entries_[i];
  }
  return all;
}

}  // namespace vonel::send
