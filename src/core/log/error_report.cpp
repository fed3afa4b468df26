#include "core/log/error_report.h"

#include "core/log/log_tail.h"
#include "core/settings/settings_store.h"

namespace vonel {
namespace {

constexpr std::string_view kCrLf = "\r\n";

bool endsWithLineEnd(std::string_view text) { return !text.empty() && text.back() == '\n'; }

}  // namespace

std::string bugReportAddress(const SettingsStore& settings) { return settings.get(kBugReportAddressKey).text(); }

std::string errorReportText(const AppInfo& info, const ErrorReport& report, std::string_view address) {
  const std::string hyphens(75, '-');
  std::string text = "Error Report: " + info.title + " " + info.version + ", " + info.operatingSystem;
  text += kCrLf;
  text += kCrLf;
  text += report.errorText;
  if (!report.userMessage.empty()) {
    text += kCrLf;
    text += kCrLf;
    text += report.userMessage;
  }
  text += kCrLf;
  text += kCrLf;
  text += report.logText;
  if (!endsWithLineEnd(report.logText)) text += kCrLf;
  text += hyphens;
  text += kCrLf;
  text += "If the 'submit report' button doesn't work on your system, open an email";
  text += kCrLf;
  text += "addressed to ";
  text += address.empty() ? std::string_view("the program's maker") : address;
  text += " and paste the following text into it.";
  text += kCrLf;
  text += kCrLf;
  text += "Submitting a bug report helps improve the software.";
  text += kCrLf;
  text += hyphens;
  return text;
}

std::string escapeForMailLink(std::string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 4);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    switch (c) {
      case '%': out += "%25"; break;
      case '?': out += "%3F"; break;
      case '&': out += "%26"; break;
      case '#': out += "%23"; break;
      case ' ': out += "%20"; break;
      case '\r':
        if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
        out += "%0D%0A";
        break;
      case '\n': out += "%0D%0A"; break;
      default: out += c;
    }
  }
  return out;
}

std::string errorReportMailLink(const AppInfo& info, const ErrorReport& report, std::string_view address,
                                std::string_view reportFile) {
  ErrorReport inMail{report.errorText, {}, report.logText.substr(tailStart(report.logText, kMailLinkLogLimit))};
  std::string body = "User: " + report.userMessage;
  body += kCrLf;
  body += kCrLf;
  body += errorReportText(info, inMail, address);
  body += kCrLf;
  body += " (Please click Attach and add the file ";
  body += reportFile;
  body += ")";
  std::string link = "mailto:";
  link += address;
  link += "?subject=" + escapeForMailLink("Bug Report (" + info.title + " - " + info.version + ")");
  link += "&body=" + escapeForMailLink(body);
  return link;
}

}  // namespace vonel
