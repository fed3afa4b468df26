#include "core/send/mail_merge.h"

#include <gtest/gtest.h>

#include "core/files/atomic_file.h"
#include "core/store/tag_files.h"
#include "../test_home.h"

namespace vonel::send {
namespace {

namespace fs = std::filesystem;

struct Merged {
  std::string to, subject, body, from;
  int account;
};

struct Collected {
  std::vector<Merged> messages;
  MergeCounts counts;
};

Collected merge(std::string_view data, std::string_view templateText, MergeSender sender = {3, "me@x.org"}) {
  Collected out;
  SilentProgress progress;
  out.counts = mergeTexts(data, templateText, sender, [&](message::Message& m) {
    out.messages.push_back({m.toEmail(), m.subject, std::string(m.messageBody()), m.from, m.fromAccount});
  }, progress);
  return out;
}

TEST(MergeTexts, EachRowFillsTheCodesInSubjectAndBody) {
  const Collected c = merge("$EMAIL,$FIRST\r\nann@x.org,Ann\r\nbob@x.org, Bob \r\n",
                            "subject: Hello $first\r\n\r\nDear $FIRST, this goes to $EMAIL\r\n");
  ASSERT_EQ(c.messages.size(), 2u);
  EXPECT_EQ(c.messages[0].subject, "Hello Ann");
  EXPECT_EQ(c.messages[0].body, "Dear Ann, this goes to ann@x.org\r\n");
  EXPECT_EQ(c.messages[0].from, "me@x.org");
  EXPECT_EQ(c.messages[0].account, 3);
  // The code is replaced by the trimmed field; toEmail keeps the field as it stands.
  EXPECT_EQ(c.messages[1].subject, "Hello Bob");
  EXPECT_EQ(c.messages[1].to, "bob@x.org");
  // The trailing blank row has one field for two columns: skipped, not counted.
  EXPECT_EQ(c.counts.saved, 2);
  EXPECT_EQ(c.counts.invalid, 0);
}

TEST(MergeTexts, LineFeedFilesMergeAsCrLfOnes) {
  const std::string crLf = "$EMAIL,$FIRST\r\nann@x.org,Ann\r\nbob@x.org,Bob";
  const std::string templateText = "Subject: Hi $FIRST\r\n\r\nDear $FIRST,\r\nbye\r\n";
  const Collected expected = merge(crLf, templateText);
  ASSERT_EQ(expected.messages.size(), 2u);
  // LF rows, a mix of both, a last row with and without an end; an LF template.
  for (const char* data :
       {"$EMAIL,$FIRST\nann@x.org,Ann\nbob@x.org,Bob\n", "$EMAIL,$FIRST\nann@x.org,Ann\r\nbob@x.org,Bob"}) {
    for (const std::string& templ : {templateText, std::string("Subject: Hi $FIRST\n\nDear $FIRST,\nbye\n")}) {
      const Collected c = merge(data, templ);
      ASSERT_EQ(c.messages.size(), 2u) << data;
      for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(c.messages[i].to, expected.messages[i].to);
        EXPECT_EQ(c.messages[i].subject, expected.messages[i].subject);
        EXPECT_EQ(c.messages[i].body, expected.messages[i].body);
      }
      EXPECT_EQ(c.counts.invalid, 0);
    }
  }
  EXPECT_EQ(expected.messages[1].body, "Dear Bob,\r\nbye\r\n");
}

TEST(MergeTexts, RaggedRowsAreJoinedOrSkipped) {
  const Collected c = merge("$EMAIL,$NAME,$NOTE\r\na@x.org,A,one, two,three\r\nshort@x.org,S\r\nq@x.org,\"Q, Jr\",n\r\n",
                            "$NAME: $NOTE");
  ASSERT_EQ(c.messages.size(), 2u);
  // Surplus fields join the last column and lose their commas.
  EXPECT_EQ(c.messages[0].body, "A: one twothree");
  // No quoting: the quoted comma splits, and the last column takes the rest.
  EXPECT_EQ(c.messages[1].body, "\"Q: Jr\"n");
  EXPECT_EQ(c.messages[1].subject, "");
}

TEST(MergeTexts, RowsWithoutAnAddressAreCountedInvalid) {
  // One column: the blank last row counts as invalid too.
  const Collected c = merge("$EMAIL\r\nnobody\r\nok@x.org\r\n", "Subject: s\r\nb");
  EXPECT_EQ(c.counts.saved, 1);
  EXPECT_EQ(c.counts.invalid, 2);
  EXPECT_THROW(merge("$MAIL,$NAME\r\na@x.org,A", "t"), NoEmailField);
  // The code is found trimmed and in any case, but replaced as it stands.
  EXPECT_EQ(merge("$NAME, $email \r\nA,a@x.org", "$NAME $email").messages.at(0).body, "A $email");
}

TEST(MergeTexts, ACodeInsideAnotherIsReplacedFirstWhenItComesFirst) {
  EXPECT_EQ(merge("$EMAIL,$N,$NAME\r\na@x.org,1,Ann", "$NAME").messages.at(0).body, "1AME");
  EXPECT_EQ(merge("$EMAIL,$NAME,$N\r\na@x.org,Ann,1", "$NAME $N").messages.at(0).body, "Ann 1");
}

TEST(MergeTexts, AFieldFullOfCodesCannotGrowWithoutBound) {
  std::string header = "$EMAIL";
  std::string row = "a@x.org";
  for (int i = 0; i < 40; ++i) {
    header += ",$A";
    row += ",$A$A";
  }
  const Collected c = merge(header + "\r\n" + row, "$A");
  EXPECT_EQ(c.counts.saved, 0);
  EXPECT_EQ(c.counts.invalid, 1);
}

TEST(MergeTexts, TenThousandRows) {
  std::string data = "$EMAIL,$N";
  for (int i = 0; i < 10000; ++i) data += "\r\nu" + std::to_string(i) + "@x.org," + std::to_string(i);
  const Collected c = merge(data, "Subject: $N\r\nrow $N");
  EXPECT_EQ(c.counts.saved, 10000);
  EXPECT_EQ(c.messages.back().subject, "9999");
}

class MergeIntoOutboxTest : public ::testing::Test, public MessageSpooler {
 protected:
  testing::TestHome home;
  AppContext context{home.clock, home.prompt, AppInfo{"Vonel", "1.2.3", "os", "/", home.dir.path()}};
  fs::path data = home.dir.path() / "data.txt";
  fs::path templateFile = home.dir.path() / "template.txt";
  std::vector<std::string> spooled;

  void SetUp() override {
    context.folders.outboxFolderPath = home.dir.path() / "Outbox";
    fs::create_directories(context.folders.outboxFolderPath);
    context.settings.set("REPLYADDRESS2", Value("two@x.org"));
  }
  void spoolMessage(message::Message& message, const std::string& from, const std::string& name) override {
    EXPECT_TRUE(from.empty() && name.empty());
    spooled.push_back(message.toEmail() + " from " + message.from + " by " + std::to_string(message.fromAccount));
  }
  MergeCounts run() {
    SilentProgress progress;
    return mergeIntoOutbox(context, *this, progress, data, templateFile);
  }
};

TEST_F(MergeIntoOutboxTest, SpoolsByTheFirstAccountAndReportsTheCounts) {
  files::writeTextFile(data, "$EMAIL\r\na@x.org\r\nnot-an-address");
  files::writeTextFile(templateFile, "Subject: s\r\nbody");
  EXPECT_EQ(run().saved, 1);
  EXPECT_EQ(spooled, std::vector<std::string>{"a@x.org from two@x.org by 2"});
  EXPECT_EQ(store::unreadTagCount(context.folders.outboxFolderPath), 1);
  EXPECT_EQ(home.prompt.lastQuestion,
            "Processed 2 name(s)\r\n1 saved to the outbox and \r\n1 had invalid email address(es) (skipped)");
}

TEST_F(MergeIntoOutboxTest, StopsWithTheDocumentedTexts) {
  files::writeTextFile(data, "");
  files::writeTextFile(templateFile, "Subject: s\r\nbody");
  run();
  EXPECT_EQ(home.prompt.lastQuestion, "Error: One or both files are empty.");

  files::writeTextFile(data, "$NAME\r\nAnn");
  run();
  EXPECT_EQ(home.prompt.lastQuestion, "Error: Your mail merge data file must contain an $EMAIL field");

  files::writeTextFile(data, "$EMAIL\r\na@x.org");
  files::writeTextFile(templateFile, "no subject");
  home.prompt.queue(Answer::No);
  run();
  EXPECT_EQ(home.prompt.lastQuestion, kMergeNoSubject);
  EXPECT_TRUE(spooled.empty());
  EXPECT_EQ(store::unreadTagCount(context.folders.outboxFolderPath), 0);
}

TEST_F(MergeIntoOutboxTest, TheWindowChecksTheFilesAndKeepsTheirNames) {
  EXPECT_FALSE(acceptMergeFiles(context, data, templateFile));
  EXPECT_EQ(home.prompt.lastQuestion, "Name list file not found");
  files::writeTextFile(data, "$EMAIL");
  EXPECT_FALSE(acceptMergeFiles(context, data, templateFile));
  EXPECT_EQ(home.prompt.lastQuestion, "Email template file not found");
  files::writeTextFile(templateFile, "Hello");
  EXPECT_TRUE(acceptMergeFiles(context, data, templateFile));
  EXPECT_EQ(home.prompt.lastQuestion, "Warning: The first line of your email template should be 'Subject: [subject here]'");
  EXPECT_EQ(context.settings.get("MergeDataFile").text(), data.string());
}

}  // namespace
}  // namespace vonel::send
