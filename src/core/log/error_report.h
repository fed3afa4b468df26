#pragma once
// The text a user sends about an error: the error, their own words and the
// log, framed by a line naming the program, and the mailto link that puts it
// into a new mail to the bug report mailbox.
#include <cstddef>
#include <string>
#include <string_view>

#include "core/log/log.h"

namespace vonel {

class SettingsStore;

// The settings key of the mailbox that receives bug reports; an empty value
// means reports can't be mailed, only viewed.
inline constexpr std::string_view kBugReportAddressKey = "BugReportAddress";
std::string bugReportAddress(const SettingsStore& settings);

struct ErrorReport {
  std::string errorText;
  std::string userMessage;  // empty when the user wrote nothing
  std::string logText;
};

// The report as it is shown and written to FullLog.txt.
std::string errorReportText(const AppInfo& info, const ErrorReport& report, std::string_view address);

// The text with the characters a mailto link can't carry as they stand
// written as escapes; "%" is escaped before anything else adds one.
std::string escapeForMailLink(std::string_view text);

// A mail link can't be longer than what the system passes to the mail
// program (128 KiB per argument on Linux) and each byte may become three, so
// the link carries the log's end only; the whole report is the file to attach.
inline constexpr std::size_t kMailLinkLogLimit = 24 * 1024;

// "mailto:" + address + "?subject=Bug Report (title - version)&body=...". The
// body names the user's words, then the report without them, then asks for
// the file at `reportFile` to be attached.
std::string errorReportMailLink(const AppInfo& info, const ErrorReport& report, std::string_view address,
                                std::string_view reportFile);

}  // namespace vonel
