#include "core/log/error_report.h"

#include <gtest/gtest.h>

#include "../test_home.h"
#include "core/settings/settings_store.h"

namespace vonel {
namespace {

const AppInfo kInfo{"Vonel", "1.2.3", "TestOS 7", "/cur", "/home"};
const std::string kHyphens(75, '-');

std::string closingBlock(std::string_view mailbox) {
  return kHyphens + "\r\n" + "If the 'submit report' button doesn't work on your system, open an email\r\n" +
         "addressed to " + std::string(mailbox) + " and paste the following text into it.\r\n\r\n" +
         "Submitting a bug report helps improve the software.\r\n" + kHyphens;
}

// The inverse of the link's escapes, to read a body back.
std::string unescape(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size()) {
      out += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

TEST(ErrorReportText, HoldsTheErrorTheUsersWordsAndTheLogBetweenItsFrame) {
  const ErrorReport report{"53 - File not found in Load of Store", "It happened at start.",
                           "1 09:30:15, Startup\r\n1 09:30:16, Scan\r\n"};
  EXPECT_EQ(errorReportText(kInfo, report, "bugs2026@example.org"),
            "Error Report: Vonel 1.2.3, TestOS 7\r\n\r\n"
            "53 - File not found in Load of Store\r\n\r\n"
            "It happened at start.\r\n\r\n"
            "1 09:30:15, Startup\r\n1 09:30:16, Scan\r\n" +
                closingBlock("bugs2026@example.org"));
}

TEST(ErrorReportText, LeavesOutMissingWordsAndStartsTheFrameOnItsOwnLine) {
  const ErrorReport report{"Out of memory", "", "No log file"};
  EXPECT_EQ(errorReportText(kInfo, report, ""),
            "Error Report: Vonel 1.2.3, TestOS 7\r\n\r\nOut of memory\r\n\r\nNo log file\r\n" +
                closingBlock("the program's maker"));
}

TEST(MailLinkEscapes, EscapePercentBeforeAnythingThatAddsOne) {
  EXPECT_EQ(escapeForMailLink("%3F"), "%253F");
  EXPECT_EQ(escapeForMailLink("100% sure?"), "100%25%20sure%3F");
  EXPECT_EQ(escapeForMailLink("a&b#c"), "a%26b%23c");
}

TEST(MailLinkEscapes, WriteEveryKindOfLineEndAsOneCrLf) {
  EXPECT_EQ(escapeForMailLink("a\r\nb\nc\rd\r\n\r\n"), "a%0D%0Ab%0D%0Ac%0D%0Ad%0D%0A%0D%0A");
}

TEST(ErrorReportMailLink, HasSubjectAndBodyButNoAttachment) {
  const ErrorReport report{"Bad & worse", "Why #1?", "1 09:30:15, 50% done\r\n"};
  const std::string link = errorReportMailLink(kInfo, report, "bugs2026@example.org", "/tmp/FullLog.txt");
  const std::string head = "mailto:bugs2026@example.org?subject=Bug%20Report%20(Vonel%20-%201.2.3)&body=";
  ASSERT_EQ(link.substr(0, head.size()), head);
  const std::string body = link.substr(head.size());
  EXPECT_EQ(body.find_first_of("?&# \r\n"), std::string::npos);
  EXPECT_EQ(link.find("attachment"), std::string::npos);
  // The user's words are named once, at the top, not again inside the report.
  EXPECT_EQ(unescape(body), "User: Why #1?\r\n\r\n" +
                                errorReportText(kInfo, ErrorReport{report.errorText, "", report.logText},
                                                "bugs2026@example.org") +
                                "\r\n (Please click Attach and add the file /tmp/FullLog.txt)");
}

TEST(ErrorReportMailLink, CarriesOnlyTheLogsLastWholeLines) {
  std::string log;
  for (int i = 0; log.size() < 3 * kMailLinkLogLimit; ++i) log += "1 09:30:15, line " + std::to_string(i) + "\r\n";
  const std::string lastLine = log.substr(log.rfind("1 09", log.size() - 3));
  const std::string body = unescape(errorReportMailLink(kInfo, {"e", "", log}, "a@b", "/tmp/FullLog.txt"));
  EXPECT_NE(body.find(lastLine), std::string::npos);
  EXPECT_EQ(body.find("line 0\r\n"), std::string::npos);
  EXPECT_LT(body.size(), kMailLinkLogLimit + 2048);
  // The first log line in the body is whole.
  const auto logStart = body.find("\r\n\r\ne\r\n\r\n") + 9;
  EXPECT_EQ(body.substr(logStart, 12), "1 09:30:15, ");
}

TEST(BugReportAddress, IsEmptyUntilConfigured) {
  testing::TestHome home;
  SettingsStore settings(home.log, home.prompt);
  EXPECT_EQ(bugReportAddress(settings), "");
  settings.loadSettingsFromText("BugReportAddress,bugs2026@example.org\r\n", "Vonel.ini");
  EXPECT_EQ(bugReportAddress(settings), "bugs2026@example.org");
}

}  // namespace
}  // namespace vonel
