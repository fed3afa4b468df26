#include "core/message/plain_text.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/services/file_subs.h"
#include "core/text/strings.h"
#include "../test_home.h"

namespace vonel::message {
namespace {

clsMessage parsed(const std::string& text) {
  clsMessage message;
  message.CreateFromText(text, false);
  return message;
}

// A multipart/mixed message with boundary "b" around the given sections.
clsMessage multipart(std::initializer_list<std::string_view> sections) {
  std::string text = "Subject: s\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n";
  for (const auto section : sections) text.append("--b\r\n").append(section).append("\r\n");
  return parsed(text + "--b--\r\n");
}

constexpr std::string_view kHtml = "Content-Type: text/html\r\n\r\n<p>Hi <b>there</b></p>";
constexpr std::string_view kPlain = "Content-Type: text/plain\r\n\r\nplain words";
constexpr std::string_view kPicture = "Content-Type: image/gif; name=\"x.gif\"\r\nContent-Transfer-Encoding: base64\r\n\r\nR0lG";

TEST(ExtractPlainMessage, WithoutMimeTheBodyLosesItsTrailingBlanksAndDashes) {
  const auto m = parsed("From: a@b.c\r\n\r\nHello there\r\n-- \r\n");
  ASSERT_EQ(m.MimePartCount(), 1u);
  EXPECT_EQ(m.MimePart(1).ContentType, "");
  EXPECT_EQ(ExtractPlainMessage(m, false), "Hello there");
}

TEST(ExtractPlainMessage, PlainWinsOverHtmlWhichBecomesAWebPageAttachment) {
  const auto m = parsed(files::LoadTextFile(std::filesystem::path(VONEL_TEST_DATA) / "messages/multipart_alternative.eml"));
  EXPECT_EQ(ExtractPlainMessage(m, false), "Caf\xE9 offer: two for one.\r\nSoft break above stays a line end.");
  EXPECT_EQ(m.MimePart(2).Filename, "View email as web page.html");
  EXPECT_TRUE(m.HasAttachment);
}

TEST(ExtractPlainMessage, HtmlFirstAndPlainSecondToLastShowsBoth) {
  EXPECT_EQ(ExtractPlainMessage(multipart({kHtml, kPlain}), false), "plain words");
  EXPECT_EQ(ExtractPlainMessage(multipart({kHtml, kPlain, kPicture}), false), "Hi there\r\n\r\nplain words");
}

TEST(ExtractPlainMessage, EmptyPlainFallsToHtmlAndNoTextPartGivesNothing) {
  EXPECT_EQ(ExtractPlainMessage(multipart({"Content-Type: text/plain\r\n\r\n", kHtml}), false), "Hi there\r\n");
  EXPECT_EQ(ExtractPlainMessage(multipart({kPicture, kPicture}), false), "");
}

TEST(ExtractPlainMessage, UnparsedHtmlBodyIsRendered) {
  const auto m = parsed("From: a@b.c\r\n\r\n<HTML><body>Hi<br>there</body></HTML>\r\n");
  EXPECT_EQ(ExtractPlainMessage(m, false), "Hi\r\nthere");
}

TEST(ExtractPlainMessage, SpecialCharactersEntitiesAndTheListFooter) {
  using namespace std::string_literals;
  const auto m = parsed("From: a@b.c\r\n\r\nCaf&eacute;\x85 \x8B \x97 x\0y\r\nYahoo! Groups Links\r\nfoot"s);
  EXPECT_EQ(ExtractPlainMessage(m, true), "Caf\xE9... < -- xy\r\n");
  EXPECT_EQ(ExtractPlainMessage(m, false), "Caf\xE9... < -- xy\r\nYahoo! Groups Links\r\nfoot");

  testing::TestHome home;
  AppContext context{home.clock, home.prompt, AppInfo{"Vonel", "1", "os", "/", home.dir.path()}};
  EXPECT_EQ(ExtractPlainMessage(m, context), ExtractPlainMessage(m, false));
  context.Settings.StoreSetting("TWEAKS", Value("TRUE"));
  EXPECT_EQ(ExtractPlainMessage(m, context), ExtractPlainMessage(m, true));
}

TEST(ExtractHtmlPartText, LineBreaksParagraphsAndLinkTargetsStayVisible) {
  clsMimeType part;
  part.ContentType = "text/html";
  part.Data = "<p>One<br>Two</p>\r\n<a href=\"http://x.org/\">site</a> &gt; caf&eacute;";
  EXPECT_EQ(ExtractHtmlPartText(part), "One\r\nTwo\r\n http://x.org/\">site  > caf\xE9");
  part.Data = "PGI+Qm9sZDwvYj4=";
  part.Encoding = "base64";
  EXPECT_EQ(text::trim(ExtractHtmlPartText(part)), "Bold");
}

TEST(ExtractHtmlPartText, AQuotedBlockKeepsItsLengthSoItsTailIsLost) {
  clsMimeType part;
  part.Data = "a<blockquote>x\ry</blockquote>b";
  EXPECT_EQ(ExtractHtmlPartText(part), "a\r\n\r\nb");
}

}  // namespace
}  // namespace vonel::message
