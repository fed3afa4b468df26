#include "core/runner/runner_command.h"

#include "core/text/strings.h"

namespace vonel::runner {
namespace {

// Only ASCII letters fold, so the copy keeps every byte's place in the
// UTF-8 command and a position found in it holds in the command too.
std::string asciiLower(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return out;
}

}  // namespace

bool showsWindow(std::string_view command) {
  const std::string_view trimmed = text::trimView(command);
  return trimmed.empty() || trimmed == kShowCommand;
}

MailCommand readMailCommand(std::string_view command) {
  const std::string lowered = asciiLower(command);
  MailCommand result;
  constexpr std::string_view kSlashMailto = "/mailto:";
  constexpr std::string_view kMailto = "mailto:";
  std::size_t linkStart = std::string_view::npos;
  if (const std::size_t at = lowered.find(kSlashMailto); at != std::string::npos) {
    linkStart = at + kSlashMailto.size();
  } else if (lowered.starts_with(kMailto)) {
    linkStart = kMailto.size();
  }
  if (linkStart != std::string_view::npos) {
    result.kind = MailCommandKind::Compose;
    result.compose = message::decodeMailto(text::trimView(command.substr(linkStart)));
    return result;
  }
  if (lowered.find(".eml") != std::string::npos) {
    result.kind = MailCommandKind::OpenFile;
    result.path = text::trim(command);
    std::erase(result.path, '"');
    return result;
  }
  return result;
}

}  // namespace vonel::runner
