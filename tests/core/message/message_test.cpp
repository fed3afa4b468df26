#include "core/message/message.h"

#include <gtest/gtest.h>

#include <initializer_list>

#include "core/log/app_error.h"
#include "core/message/message_list.h"
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

Message parsed(const std::string& text, bool headerOnly = true) {
  Message message(nullptr, &kClock);
  message.createFromText(text, headerOnly);
  return message;
}

TEST(CreateFromText, ContinuationLinesRunThroughTheLastKeysBranch) {
  const auto m = parsed(mail({"To: first@example.com,", " second@example.com", "Subject: Hello", "\tworld",
                              "Received: from a", " by b", "Cc: x", " y"}));
  EXPECT_EQ(m.toEmail(), "second@example.com");
  EXPECT_EQ(m.subject, "Hello \tworld");  // trimming takes blanks only
  EXPECT_EQ(m.received, " from a by b");
  EXPECT_EQ(m.cc, "y");
  EXPECT_EQ(m.messageTo, "");
}

TEST(CreateFromText, AFoldedLineWithAColonIsANewIgnoredKey) {
  const auto m = parsed(mail({"Subject: Meeting", " at 10:30 today", " in room 4", "Subject: again"}));
  // " at 10" becomes a nonsense key, so " in room 4" is ignored too; the next
  // Subject does not follow a subject line and starts afresh.
  EXPECT_EQ(m.subject, "again");
  const auto joined = parsed(mail({"Subject: one", "Subject: two"}));
  EXPECT_EQ(joined.subject, "one two");
}

TEST(CreateFromText, SignedFieldListContinuesTheSignature) {
  const auto m = parsed(mail({"DomainKey-Signature: a=rsa; c=simple;", " h=received:from:to;", " b=XYZ"}));
  EXPECT_EQ(m.domainKey, "a=rsa; c=simple;from:to;b=XYZ");
}

TEST(CreateFromText, FirstContentTypeAndLastSpamHeadersWin) {
  const auto m = parsed(mail({"Content-Type: text/plain; charset=x", "Content-Type: text/html",
                              "X-Spam-Status: No,", "X-Spam-Status: score=1", "X-Mailer: a", "X-Mailer: b"}));
  EXPECT_EQ(m.contentTypeMain, "text/plain charset=x");
  EXPECT_EQ(m.xSpamStatus, "No,score=1");
  EXPECT_EQ(m.xMailer, "b");
}

TEST(CreateFromText, KeysAreNotTrimmedButCaseIsIgnored) {
  const auto m = parsed(mail({"SUBJECT: shout", "From : ignored@example.com", "Date: Mon, 1 Jan 2024 --  "}));
  EXPECT_EQ(m.subject, "shout");
  EXPECT_EQ(m.from, "");
  EXPECT_EQ(m.sendDate, "Mon, 1 Jan 2024");
}

TEST(CreateFromText, ToFallsBackOnDeliveredTo) {
  const auto m = parsed(mail({"Delivered-To: me@example.com"}));
  EXPECT_EQ(m.toEmail(), "me@example.com");
}

TEST(CreateFromText, StoreFlagsReadTheLeadingNumber) {
  const auto m = parsed(mail({"X-Message-Read: 01", "X-Message-HighPriority: 2", "X-Message-Replied: 1x",
                              "X-Message-Tags: work, home"}));
  EXPECT_TRUE(m.read);
  EXPECT_FALSE(m.highPriority);
  EXPECT_TRUE(m.replied);
  EXPECT_EQ(m.tags(), "work, home");
}

TEST(CreateFromText, ReusedObjectIsClearedButKeepsReplied) {
  Message m(nullptr, &kClock);
  m.createFromText(mail({"X-Message-Replied: 1", "X-Message-Read: 1", "Received: a", "Subject: one"}), true);
  m.createFromText(mail({"From: b@example.com"}), true);
  EXPECT_TRUE(m.replied);
  EXPECT_FALSE(m.read);
  EXPECT_EQ(m.received, "");
  EXPECT_EQ(m.subject, "one");  // fields the list does not clear keep their old value
}

TEST(CreateFromText, SizeInWholeKilobytesWithTiesToEven) {
  EXPECT_EQ(parsed(std::string(1500, 'x')).size, 1.0f);
  EXPECT_EQ(parsed(std::string(2560, 'x')).size, 2.0f);
  EXPECT_EQ(parsed(std::string(3584, 'x')).size, 4.0f);
  EXPECT_EQ(parsed("").size, 1.0f);
}

TEST(CreateFromText, BodyAndHeadersSplitAtTheFirstBlankLine) {
  const auto m = parsed("Subject: s\r\n\r\n");
  EXPECT_EQ(m.headers, "Subject: s");
  EXPECT_EQ(m.messageBody(), "");
  EXPECT_EQ(m.messageText(), "Subject: s\r\n\r\n");
  EXPECT_EQ(parsed("Subject: s\r\n\r\n", false).mimePartCount(), 1u);
}

TEST(CreateFromText, MissingOrLateBlankLineIsLoggedAsInvalid) {
  testing::TestHome home;
  Message m(&home.log, &kClock);
  m.createFromText("Subject: s\r\n\r\nbody", true);
  m.createFromText("Subject: t\nFrom: lf-only\n\nbody", true);
  EXPECT_NE(home.log.currentAction().find("Invalid message format"), std::string::npos);
  EXPECT_EQ(m.headers, "");
  EXPECT_EQ(m.subject, "s");

  // A blank line beyond 32767 overflows the position and reads as none.
  const std::string longHeader = "X-Long: " + std::string(33000, 'a');
  m.createFromText(mail({"Subject: late", longHeader}), true);
  EXPECT_EQ(m.subject, "s");
  EXPECT_EQ(m.size, 32.0f);
}

TEST(Properties, FilenameCaseCarriesTheReadState) {
  Message m;
  m.setFilename("Store/Inbox/Msg_Ab.eml");
  EXPECT_EQ(m.filename(), "Store/Inbox/MSG_AB.EML");
  m.read = true;
  EXPECT_EQ(m.filename(), "Store/Inbox/msg_ab.eml");
}

TEST(Properties, AttachmentNamesAndEmptyParts) {
  Message m;
  m.addAttachment("a.txt");
  m.addAttachment("b.jpg");
  EXPECT_EQ(m.attachmentFilenames(), "a.txt * b.jpg * ");
  EXPECT_FALSE(m.hasAttachment);
  EXPECT_EQ(m.mimePart(1).contentType, "");
  EXPECT_EQ(m.mimePart(0).size, 0);
}

TEST(Tags, SetterNormalisesAndPresenceIsASubstring) {
  Message m;
  m.setTags("  ,work,home ");
  EXPECT_EQ(m.tags(), "work,home");
  m.setTags(" , ");
  EXPECT_EQ(m.tags(), "");
  m.setTags("Homework");
  EXPECT_TRUE(m.tagsPresent(""));
  EXPECT_TRUE(m.tagsPresent("x,,WORK"));
  EXPECT_FALSE(m.tagsPresent("play,"));
}

TEST(RawMessage, FlagLinesCloseTheHeaderBlock) {
  auto m = parsed(mail({"Subject: s", "X-Message-Read: 1"}));
  EXPECT_TRUE(m.read);
  m.read = false;
  EXPECT_EQ(m.rawMessage(), mail({"Subject: s", "X-Receive-Date: 2026-01-02 03:04:05", "X-Message-Tags: "}));
  m.read = true;
  m.highPriority = true;
  m.setTags("t1");
  m.replaceRawMessage(mail({"Subject: s", "X-Message-Tags: old", "X-Receive-Date: earlier"}));
  EXPECT_EQ(m.rawMessage(), mail({"Subject: s", "X-Message-Tags: t1", "X-Receive-Date: earlier", "X-Message-Read: 1",
                                  "X-Message-HighPriority: 1"}));
}

TEST(RawMessage, FalseFlagsAreDeletedEverywhereAndNoBlankLineMeansNoLines) {
  auto m = parsed(mail({"Subject: s"}, "quote: X-Message-Replied: 1\r\nend"));
  EXPECT_EQ(m.rawMessage(), mail({"Subject: s", "X-Receive-Date: 2026-01-02 03:04:05", "X-Message-Tags: "},
                                 "quote: end"));
  m.read = true;
  m.replaceRawMessage("Subject: only headers\r\n");
  EXPECT_EQ(m.rawMessage(), "Subject: only headers\r\n");
}

TEST(RawMessage, TagAsSpamMarksEverySubjectOnce) {
  auto m = parsed(mail({"Subject: hi"}, "Subject: quoted\r\n"));
  m.tagAsSpam();
  m.tagAsSpam();  // Headers still lacks the mark, so it is applied again
  EXPECT_EQ(m.subject, "hi");
  EXPECT_NE(m.rawMessage().find("Subject: SPAM: SPAM: quoted"), std::string::npos);
  auto marked = parsed(mail({"Subject: SPAM: hi"}));
  marked.tagAsSpam();
  EXPECT_EQ(marked.rawMessage().find("SPAM: SPAM"), std::string::npos);
}

TEST(RawMessage, RemoveReceiveDateCutsByTheSerialisedText) {
  auto m = parsed(mail({"Subject: s", "X-Receive-Date: 2020-01-01 00:00:00", "X-Message-Tags: a"}));
  m.removeReceiveDate();
  EXPECT_EQ(m.rawMessage(), mail({"Subject: s", "X-Message-Tags: a", "X-Receive-Date: 2026-01-02 03:04:05"}));
}

TEST(ArrivedMessage, OnlyTheHeaderBlockGetsTheStoreLines) {
  // What rawMessage takes out of a body, or keeps from a message stored
  // elsewhere, stays as it came; only the header's own store lines give way.
  const std::string body = "quote: X-Message-Replied: 1\r\nX-Message-Read: 1\r\nX-Receive-Date: then\r\n.\r\n";
  auto m = parsed(mail({"Subject: s", "X-Receive-Date: 2020-01-01 00:00:00", "X-Message-Read: 1"}, body), false);
  m.read = false;
  EXPECT_EQ(m.arrivedMessage(), mail({"Subject: s", "X-Receive-Date: 2026-01-02 03:04:05", "X-Message-Tags: "}, body));
  m.highPriority = true;
  m.setTags("t");
  EXPECT_EQ(m.arrivedMessage(), mail({"Subject: s", "X-Receive-Date: 2026-01-02 03:04:05",
                                      "X-Message-HighPriority: 1", "X-Message-Tags: t"},
                                     body));
  m.replaceRawMessage("Subject: no blank line");
  EXPECT_EQ(m.arrivedMessage(), "Subject: no blank line");
}

TEST(StrippedBody, PlainBodyFlattenedAndHtmlPartStripped) {
  const auto plain = parsed(mail({"Subject: s"}, "caf&eacute;\r\nline=20two\r\n"), false);
  EXPECT_EQ(plain.strippedBody, "caf\xE9 line two");
  EXPECT_EQ(plain.htmlStrippedBody, "");  // no type, so no mark-up pass

  const auto html = parsed(mail({"Content-Type: text/html"}, "<p>A&nbsp;&lt;b&gt;</p>\r\n<style>x</style>B"), false);
  EXPECT_EQ(html.strippedBody, "<p>A <b></p> <style>x</style>B");
  EXPECT_EQ(html.htmlStrippedBody, "A B");
}

TEST(StrippedBody, LaterBase64PartIsUsedWhenTheFirstIsEmpty) {
  const auto m = parsed(mail({"Content-Type: multipart/mixed; boundary=XX"},
                             "--XX\r\nContent-Type: text/plain\r\n\r\n\r\n--XX\r\n"
                             "Content-Type: text/plain\r\nContent-Transfer-Encoding: base64\r\n\r\nSGVsbG8=\r\n--XX--\r\n"),
                        false);
  ASSERT_EQ(m.mimePartCount(), 2u);
  EXPECT_EQ(m.strippedBody, "Hello");
}

TEST(SendDate, ZoneIsTakenOffAndTheLocalStandardZoneAdded) {
  auto m = parsed(mail({"Date: Tue, 02 Jan 2024 10:00:00 +0100 (CET)"}));
  EXPECT_EQ(m.sendDateInZone(0), (text::DateTime{2024, 1, 2, 9, 0, 0}));
  EXPECT_EQ(m.sendDateInZone(-480), (text::DateTime{2024, 1, 2, 17, 0, 0}));
  // Zone minutes always count forwards: -0930 is nine hours back, thirty minutes on.
  m.sendDate = "2 Jan 2024 10:00 -0930";
  EXPECT_EQ(m.sendDateInZone(0), (text::DateTime{2024, 1, 2, 18, 30, 0}));
  EXPECT_EQ(m.sendDateInZone(210), (text::DateTime{2024, 1, 2, 16, 0, 0}));
}

TEST(SendDate, DateWithoutZoneOrUnreadableFails) {
  auto m = parsed(mail({"Date: Tue, 02 Jan 2024 10:00:00 GMT"}));
  EXPECT_THROW(m.sendDateInZone(0), AppError);
  m.sendDate = "soon +0100";
  EXPECT_THROW(m.sendDateInZone(0), AppError);
  m.sendDate = "2 Jan 2024 10:00 +99999900";
  EXPECT_THROW(m.sendDateInZone(0), AppError);
}

TEST(MessageList, KeyedAndKeylessItemsInOrder) {
  MessageList list;
  auto first = list.add(std::make_shared<Message>(), "Key1");
  list.add(std::make_shared<Message>());
  list.add(std::make_shared<Message>(), "key2");
  EXPECT_EQ(list.count(), 3u);
  EXPECT_EQ(list.item("KEY1"), first);
  EXPECT_THROW(list.add(std::make_shared<Message>(), "KEY2"), AppError);
  list.remove(1);
  EXPECT_THROW(list.item("key1"), AppError);
  list.remove("Key2");
  EXPECT_EQ(list.count(), 1u);
  EXPECT_THROW(list.item(2), AppError);
}

}  // namespace
}  // namespace vonel::message

namespace vonel::message {
namespace {

TEST(BadInput, HugeHeadersReadAsInvalidWithoutWork) {
  std::string manyLines;
  for (int i = 0; i < 200000; ++i) manyLines += "X-Line: " + std::to_string(i) + "\r\n";
  for (const bool headerOnly : {true, false}) {
    EXPECT_EQ(parsed(manyLines + "\r\nbody", headerOnly).headers, "");
    EXPECT_EQ(parsed("Subject: " + std::string(1 << 20, 'x') + "\r\n\r\nbody", headerOnly).subject, "");
  }
}

TEST(BadInput, NullBytesBrokenWordsAndUnclosedQuotes) {
  const auto m = parsed(mail({std::string("Subject: before\0after", 21), "From: =?iso-8859-1?B?", "To: \"unclosed <a@b",
                              "Content-Type: multipart/mixed; boundary=\"open"},
                             "--open\r\nContent-Type: text/plain; name=\"x\r\n\r\ndata\r\n--open"),
                        false);
  EXPECT_EQ(m.subject, "before");
  EXPECT_EQ(m.toEmail(), "unclosed <a@b");
  // The last marker ends the section without its closing dashes, and the
  // unclosed name runs to the line end.
  ASSERT_EQ(m.mimePartCount(), 1u);
  EXPECT_EQ(m.attachmentFilenames(), "x * ");
  EXPECT_EQ(m.strippedBody, "data");
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
  ASSERT_EQ(m.mimePartCount(), 1u);
  EXPECT_EQ(m.mimePart(1).contentType, "multipart/mixed");
}

}  // namespace
}  // namespace vonel::message
