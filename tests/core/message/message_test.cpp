#include "core/message/message.h"

#include <gtest/gtest.h>

#include <initializer_list>

#include "core/log/app_error.h"
#include "core/message/messages.h"
#include "../test_home.h"

namespace vonel::message {
namespace {

// Header lines joined by CR LF, then the blank line and the body.
std::string mail(std::initializer_list<std::string_view> headers, std::string_view body = "body\r\n") {
  std::string text;
  for (const auto line : headers) text.append(line).append("\r\n");
  return text.append("\r\n").append(body);
}

const FixedClock kClock(text::DateTime{2026, 1, 2, 3, 4, 5});

clsMessage parsed(const std::string& text, bool headerOnly = true) {
  clsMessage message(nullptr, &kClock);
  message.CreateFromText(text, headerOnly);
  return message;
}

TEST(CreateFromText, ContinuationLinesRunThroughTheLastKeysBranch) {
  const auto m = parsed(mail({"To: first@example.com,", " second@example.com", "Subject: Hello", "\tworld",
                              "Received: from a", " by b", "Cc: x", " y"}));
  EXPECT_EQ(m.To_Email(), "second@example.com");
  EXPECT_EQ(m.Subject, "Hello \tworld");  // trimming takes blanks only
  EXPECT_EQ(m.Received, " from a by b");
  EXPECT_EQ(m.CC, "y");
  EXPECT_EQ(m.MessageTo, "");
}

TEST(CreateFromText, AFoldedLineWithAColonIsANewIgnoredKey) {
  const auto m = parsed(mail({"Subject: Meeting", " at 10:30 today", " in room 4", "Subject: again"}));
  // " at 10" becomes a nonsense key, so " in room 4" is ignored too; the next
  // Subject does not follow a subject line and starts afresh.
  EXPECT_EQ(m.Subject, "again");
  const auto joined = parsed(mail({"Subject: one", "Subject: two"}));
  EXPECT_EQ(joined.Subject, "one two");
}

TEST(CreateFromText, SignedFieldListContinuesTheSignature) {
  const auto m = parsed(mail({"DomainKey-Signature: a=rsa; c=simple;", " h=received:from:to;", " b=XYZ"}));
  EXPECT_EQ(m.DomainKey, "a=rsa; c=simple;from:to;b=XYZ");
}

TEST(CreateFromText, FirstContentTypeAndLastSpamHeadersWin) {
  const auto m = parsed(mail({"Content-Type: text/plain; charset=x", "Content-Type: text/html",
                              "X-Spam-Status: No,", "X-Spam-Status: score=1", "X-Mailer: a", "X-Mailer: b"}));
  EXPECT_EQ(m.ContentTypeMain, "text/plain charset=x");
  EXPECT_EQ(m.XSpamStatus, "No,score=1");
  EXPECT_EQ(m.XMailer, "b");
}

TEST(CreateFromText, KeysAreNotTrimmedButCaseIsIgnored) {
  const auto m = parsed(mail({"SUBJECT: shout", "From : ignored@example.com", "Date: Mon, 1 Jan 2024 --  "}));
  EXPECT_EQ(m.Subject, "shout");
  EXPECT_EQ(m.From, "");
  EXPECT_EQ(m.SendDate, "Mon, 1 Jan 2024");
}

TEST(CreateFromText, ToFallsBackOnDeliveredTo) {
  const auto m = parsed(mail({"Delivered-To: me@example.com"}));
  EXPECT_EQ(m.To_Email(), "me@example.com");
}

TEST(CreateFromText, StoreFlagsReadTheLeadingNumber) {
  const auto m = parsed(mail({"X-Message-Read: 01", "X-Message-HighPriority: 2", "X-Message-Replied: 1x",
                              "X-Message-Tags: work, home"}));
  EXPECT_TRUE(m.Read);
  EXPECT_FALSE(m.HighPriority);
  EXPECT_TRUE(m.Replied);
  EXPECT_EQ(m.Tags(), "work, home");
}

TEST(CreateFromText, ReusedObjectIsClearedButKeepsReplied) {
  clsMessage m(nullptr, &kClock);
  m.CreateFromText(mail({"X-Message-Replied: 1", "X-Message-Read: 1", "Received: a", "Subject: one"}), true);
  m.CreateFromText(mail({"From: b@example.com"}), true);
  EXPECT_TRUE(m.Replied);
  EXPECT_FALSE(m.Read);
  EXPECT_EQ(m.Received, "");
  EXPECT_EQ(m.Subject, "one");  // fields the list does not clear keep their old value
}

TEST(CreateFromText, SizeInWholeKilobytesWithTiesToEven) {
  EXPECT_EQ(parsed(std::string(1500, 'x')).Size, 1.0f);
  EXPECT_EQ(parsed(std::string(2560, 'x')).Size, 2.0f);
  EXPECT_EQ(parsed(std::string(3584, 'x')).Size, 4.0f);
  EXPECT_EQ(parsed("").Size, 1.0f);
}

TEST(CreateFromText, BodyAndHeadersSplitAtTheFirstBlankLine) {
  const auto m = parsed("Subject: s\r\n\r\n");
  EXPECT_EQ(m.Headers, "Subject: s");
  EXPECT_EQ(m.MessageBody(), "");
  EXPECT_EQ(m.Messagetext(), "Subject: s\r\n\r\n");
  EXPECT_EQ(parsed("Subject: s\r\n\r\n", false).MimePartCount(), 1u);
}

TEST(CreateFromText, MissingOrLateBlankLineIsLoggedAsInvalid) {
  testing::TestHome home;
  clsMessage m(&home.log, &kClock);
  m.CreateFromText("Subject: s\r\n\r\nbody", true);
  m.CreateFromText("Subject: t\nFrom: lf-only\n\nbody", true);
  EXPECT_NE(home.log.CurrentAction().find("Invalid message format"), std::string::npos);
  EXPECT_EQ(m.Headers, "");
  EXPECT_EQ(m.Subject, "s");

  // A blank line beyond 32767 overflows the position and reads as none.
  const std::string longHeader = "X-Long: " + std::string(33000, 'a');
  m.CreateFromText(mail({"Subject: late", longHeader}), true);
  EXPECT_EQ(m.Subject, "s");
  EXPECT_EQ(m.Size, 32.0f);
}

TEST(Properties, FilenameCaseCarriesTheReadState) {
  clsMessage m;
  m.setFilename("Store/Inbox/Msg_Ab.eml");
  EXPECT_EQ(m.Filename(), "Store/Inbox/MSG_AB.EML");
  m.Read = true;
  EXPECT_EQ(m.Filename(), "Store/Inbox/msg_ab.eml");
}

TEST(Properties, AttachmentNamesAndEmptyParts) {
  clsMessage m;
  m.AddAttachment("a.txt");
  m.AddAttachment("b.jpg");
  EXPECT_EQ(m.AttachmentFilenames(), "a.txt * b.jpg * ");
  EXPECT_FALSE(m.HasAttachment);
  EXPECT_EQ(m.MimePart(1).ContentType, "");
  EXPECT_EQ(m.MimePart(0).Size, 0);
}

TEST(Tags, SetterNormalisesAndPresenceIsASubstringTest) {
  clsMessage m;
  m.setTags("  ,work,home ");
  EXPECT_EQ(m.Tags(), "work,home");
  m.setTags(" , ");
  EXPECT_EQ(m.Tags(), "");
  m.setTags("Homework");
  EXPECT_TRUE(m.TagsPresent(""));
  EXPECT_TRUE(m.TagsPresent("x,,WORK"));
  EXPECT_FALSE(m.TagsPresent("play,"));
}

TEST(RawMessage, FlagLinesCloseTheHeaderBlock) {
  auto m = parsed(mail({"Subject: s", "X-Message-Read: 1"}));
  EXPECT_TRUE(m.Read);
  m.Read = false;
  EXPECT_EQ(m.RawMessage(), mail({"Subject: s", "X-Receive-Date: 2026-01-02 03:04:05", "X-Message-Tags: "}));
  m.Read = true;
  m.HighPriority = true;
  m.setTags("t1");
  m.ReplaceRawMessage(mail({"Subject: s", "X-Message-Tags: old", "X-Receive-Date: earlier"}));
  EXPECT_EQ(m.RawMessage(), mail({"Subject: s", "X-Message-Tags: t1", "X-Receive-Date: earlier", "X-Message-Read: 1",
                                  "X-Message-HighPriority: 1"}));
}

TEST(RawMessage, FalseFlagsAreDeletedEverywhereAndNoBlankLineMeansNoLines) {
  auto m = parsed(mail({"Subject: s"}, "quote: X-Message-Replied: 1\r\nend"));
  EXPECT_EQ(m.RawMessage(), mail({"Subject: s", "X-Receive-Date: 2026-01-02 03:04:05", "X-Message-Tags: "},
                                 "quote: end"));
  m.Read = true;
  m.ReplaceRawMessage("Subject: only headers\r\n");
  EXPECT_EQ(m.RawMessage(), "Subject: only headers\r\n");
}

TEST(RawMessage, TagAsSpamMarksEverySubjectOnce) {
  auto m = parsed(mail({"Subject: hi"}, "Subject: quoted\r\n"));
  m.TagAsSpam();
  m.TagAsSpam();  // Headers still lacks the mark, so it is applied again
  EXPECT_EQ(m.Subject, "hi");
  EXPECT_NE(m.RawMessage().find("Subject: SPAM: SPAM: quoted"), std::string::npos);
  auto marked = parsed(mail({"Subject: SPAM: hi"}));
  marked.TagAsSpam();
  EXPECT_EQ(marked.RawMessage().find("SPAM: SPAM"), std::string::npos);
}

TEST(RawMessage, RemoveReceiveDateCutsByTheSerialisedText) {
  auto m = parsed(mail({"Subject: s", "X-Receive-Date: 2020-01-01 00:00:00", "X-Message-Tags: a"}));
  m.RemoveReceiveDate();
  EXPECT_EQ(m.RawMessage(), mail({"Subject: s", "X-Message-Tags: a", "X-Receive-Date: 2026-01-02 03:04:05"}));
}

TEST(StrippedBody, PlainBodyFlattenedAndHtmlPartStripped) {
  const auto plain = parsed(mail({"Subject: s"}, "caf&eacute;\r\nline=20two\r\n"), false);
  EXPECT_EQ(plain.StrippedBody, "caf\xE9 line two");
  EXPECT_EQ(plain.HtmlStrippedBody, "");  // no type, so no mark-up pass

  const auto html = parsed(mail({"Content-Type: text/html"}, "<p>A&nbsp;&lt;b&gt;</p>\r\n<style>x</style>B"), false);
  EXPECT_EQ(html.StrippedBody, "<p>A <b></p> <style>x</style>B");
  EXPECT_EQ(html.HtmlStrippedBody, "A B");
}

TEST(StrippedBody, LaterBase64PartIsUsedWhenTheFirstIsEmpty) {
  const auto m = parsed(mail({"Content-Type: multipart/mixed; boundary=XX"},
                             "--XX\r\nContent-Type: text/plain\r\n\r\n\r\n--XX\r\n"
                             "Content-Type: text/plain\r\nContent-Transfer-Encoding: base64\r\n\r\nSGVsbG8=\r\n--XX--\r\n"),
                        false);
  ASSERT_EQ(m.MimePartCount(), 2u);
  EXPECT_EQ(m.StrippedBody, "Hello");
}

TEST(SendDate, ZoneIsTakenOffAndTheLocalStandardZoneAdded) {
  auto m = parsed(mail({"Date: Tue, 02 Jan 2024 10:00:00 +0100 (CET)"}));
  EXPECT_EQ(m.SendDateInZone(0), (text::DateTime{2024, 1, 2, 9, 0, 0}));
  EXPECT_EQ(m.SendDateInZone(-480), (text::DateTime{2024, 1, 2, 17, 0, 0}));
  // Zone minutes always count forwards: -0930 is nine hours back, thirty minutes on.
  m.SendDate = "2 Jan 2024 10:00 -0930";
  EXPECT_EQ(m.SendDateInZone(0), (text::DateTime{2024, 1, 2, 18, 30, 0}));
  EXPECT_EQ(m.SendDateInZone(210), (text::DateTime{2024, 1, 2, 16, 0, 0}));
}

TEST(SendDate, DateWithoutZoneOrUnreadableFails) {
  auto m = parsed(mail({"Date: Tue, 02 Jan 2024 10:00:00 GMT"}));
  EXPECT_THROW(m.SendDateInZone(0), AppError);
  m.SendDate = "soon +0100";
  EXPECT_THROW(m.SendDateInZone(0), AppError);
  m.SendDate = "2 Jan 2024 10:00 +99999900";
  EXPECT_THROW(m.SendDateInZone(0), AppError);
}

TEST(Messages, KeyedAndKeylessItemsInOrder) {
  clsMessages list;
  auto first = list.Add(std::make_shared<clsMessage>(), "Key1");
  list.Add(std::make_shared<clsMessage>());
  list.Add(std::make_shared<clsMessage>(), "key2");
  EXPECT_EQ(list.Count(), 3u);
  EXPECT_EQ(list.Item("KEY1"), first);
  EXPECT_THROW(list.Add(std::make_shared<clsMessage>(), "KEY2"), AppError);
  list.Remove(1);
  EXPECT_THROW(list.Item("key1"), AppError);
  list.Remove("Key2");
  EXPECT_EQ(list.Count(), 1u);
  EXPECT_THROW(list.Item(2), AppError);
}

}  // namespace
}  // namespace vonel::message

namespace vonel::message {
namespace {

TEST(BadInput, HugeHeadersReadAsInvalidWithoutWork) {
  std::string manyLines;
  for (int i = 0; i < 200000; ++i) manyLines += "X-Line: " + std::to_string(i) + "\r\n";
  for (const bool headerOnly : {true, false}) {
    EXPECT_EQ(parsed(manyLines + "\r\nbody", headerOnly).Headers, "");
    EXPECT_EQ(parsed("Subject: " + std::string(1 << 20, 'x') + "\r\n\r\nbody", headerOnly).Subject, "");
  }
}

TEST(BadInput, NullBytesBrokenWordsAndUnclosedQuotes) {
  const auto m = parsed(mail({std::string("Subject: before\0after", 21), "From: =?iso-8859-1?B?", "To: \"unclosed <a@b",
                              "Content-Type: multipart/mixed; boundary=\"open"},
                             "--open\r\nContent-Type: text/plain; name=\"x\r\n\r\ndata\r\n--open"),
                        false);
  EXPECT_EQ(m.Subject, "before");
  EXPECT_EQ(m.To_Email(), "unclosed <a@b");
  // The last marker ends the section without its closing dashes, and the
  // unclosed name runs to the line end.
  ASSERT_EQ(m.MimePartCount(), 1u);
  EXPECT_EQ(m.AttachmentFilenames(), "x * ");
  EXPECT_EQ(m.StrippedBody, "data");
}

TEST(BadInput, DeepNestingIsWalkedOnlySoFar) {
  // Distinct boundaries make every level search all the text inside it.
  std::string body;
  constexpr int kDepth = 5000;
  for (int i = 0; i < kDepth; ++i) {
    body += "--x" + std::to_string(i) + "y\r\nContent-Type: multipart/mixed; boundary=x" + std::to_string(i + 1) +
            "y\r\n\r\n";
  }
  body += "--x" + std::to_string(kDepth) + "y\r\nContent-Type: text/plain\r\n\r\ndeep\r\n";
  for (int i = kDepth; i >= 0; --i) body += "--x" + std::to_string(i) + "y--\r\n";
  const auto m = parsed(mail({"Content-Type: multipart/mixed; boundary=x0y"}, body), false);
  ASSERT_EQ(m.MimePartCount(), 1u);
  EXPECT_EQ(m.MimePart(1).ContentType, "multipart/mixed");
}

}  // namespace
}  // namespace vonel::message
