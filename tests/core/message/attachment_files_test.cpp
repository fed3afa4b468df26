#include "core/message/attachment_files.h"

#include <gtest/gtest.h>

#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "../test_home.h"

namespace vonel::message {
namespace {

TEST(SafeAttachmentName, NamesFromMailCantLeaveTheFolderOrNameADevice) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"Report 2024.pdf", "Report 2024.pdf"},
      {"../../etc/passwd", "passwd"},
      {"..\\..\\Windows\\evil.dll", "evil.dll"},
      {"C:evil.exe", "evil.exe"},
      {"D:\\", "attachment"},
      {"..", "attachment"},
      {"", "attachment"},
      {".hidden.", "hidden"},
      {"a\tb\x01" "c\x7F.txt", "abc.txt"},
      {"what?<>|*.txt", "what     .txt"},
      {"CON", "CON1"},
      {"con.txt", "con1.txt"},
      {"Com1.log", "Com11.log"},
      {"nul .tar.gz", "nul 1.tar.gz"},
      {"COM10.txt", "COM10.txt"},
  };
  for (const auto& [name, safe] : cases) EXPECT_EQ(safeAttachmentName(name), safe) << name;

  const std::string longName = safeAttachmentName(std::string(300, 'x') + ".jpeg");
  EXPECT_EQ(longName.size(), 80u);
  EXPECT_TRUE(longName.ends_with("x.jpeg"));
}

TEST(WriteFile, SavedAttachmentsHoldExactlyTheDecodedBytes) {
  // Long binary sources are compared with base64 -d and quopri by an integration test.
  testing::TempDir dir;
  const auto file = dir.path() / "out.bin";
  // One and two bytes of padding: no fill is left behind.
  writeFile(file, "YQ==", "base64");
  EXPECT_EQ(files::loadTextFile(file), "a");
  writeFile(file, "YWI=", "base64");
  EXPECT_EQ(files::loadTextFile(file), "ab");

  writeFile(file, "  lead=20and=\r\n soft=0D=0A=FF=e9 tail  ", "quoted-printable");
  EXPECT_EQ(files::loadTextFile(file), "  lead and soft\r\n\xFF\xE9 tail  ");
  writeFile(file, "as it =ZZ stands\r\n", "7bit");
  EXPECT_EQ(files::loadTextFile(file), "as it =ZZ stands\r\n");
}

Message withAttachments(std::string_view name) {
  Message message;
  message.createFromText(
      "Subject: s\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n"
      "--b\r\nContent-Type: text/plain\r\n\r\nbody\r\n"
      "--b\r\nContent-Type: text/html\r\nContent-Transfer-Encoding: base64\r\n\r\nPGI+aGk8L2I+\r\n"
      "--b\r\nContent-Type: application/octet-stream; name=\"" + std::string(name) +
          "\"\r\nContent-Transfer-Encoding: base64\r\n\r\nAAEC\r\n--b--\r\n",
      false);
  return message;
}

TEST(SaveAttachments, EveryNamedPartGoesInsideTheFolder) {
  testing::TestHome home;
  const auto folder = home.dir.path() / "inside";
  ASSERT_TRUE(files::ensureFolder(folder));
  const auto message = withAttachments("../../outside.bin");
  const auto written = saveAllAttachmentsNoUserInput(message, folder, &home.log);
  ASSERT_EQ(written.size(), 2u);
  EXPECT_EQ(written[0], folder / "View email as web page.html");
  EXPECT_EQ(files::loadTextFile(written[0]), "<b>hi</b>");
  EXPECT_EQ(written[1], folder / "outside.bin");
  EXPECT_EQ(files::loadTextFile(written[1]), std::string("\0\1\2", 3));
  EXPECT_FALSE(files::fileExists(home.dir.path() / "outside.bin"));

  EXPECT_TRUE(saveAllAttachmentsNoUserInput(message, folder / "gone", &home.log).empty());
  home.log.writeActionsToLog();
  EXPECT_NE(files::loadTextFile(home.log.currentLogFilename()).find("modAttachments"), std::string::npos);
}

TEST(SaveAttachments, AWebPageToOpenTakesTheOtherPartsAlong) {
  testing::TempDir dir;
  auto message = withAttachments("logo.png");
  EXPECT_EQ(writeAttachmentToOpen(message, 3, dir.path(), nullptr), dir.path() / "logo.png");
  EXPECT_FALSE(files::fileExists(dir.path() / "View email as web page.html"));

  const auto page = writeAttachmentToOpen(message, 2, dir.path(), nullptr);
  EXPECT_EQ(page, dir.path() / "View email as web page.html");
  EXPECT_TRUE(files::fileExists(dir.path() / "logo.png"));
  EXPECT_EQ(message.attachmentsFolder, dir.path().string());
  EXPECT_FALSE(writeAttachmentToOpen(message, 1, dir.path(), nullptr));
  EXPECT_TRUE(isAttachedMessage("Attached_Msg 1.EmL"));
}

// Answers the save dialogue with a prepared file, or cancels without one.
class PreparedChooser : public SaveFileChooser {
 public:
  std::optional<fs::path> answer;
  std::string title;
  fs::path proposal;
  std::optional<fs::path> chooseSaveFile(std::string_view dialogTitle, const fs::path& proposed) override {
    title = dialogTitle;
    proposal = proposed;
    return answer;
  }
};

TEST(SaveAttachments, OneIsSavedAsChosenSeveralGoToTheChosenFolder) {
  testing::TestHome home;
  Message one;
  one.createFromText("Content-Type: image/jpeg; name=\"../me\"\r\nContent-Transfer-Encoding: base64\r\n\r\n/9j/\r\n",
                     false);
  PreparedChooser chooser;
  EXPECT_TRUE(saveAllAttachments(one, true, home.dir.path(), chooser, home.prompt, &home.log).empty());
  EXPECT_EQ(chooser.title, "Save attachments");
  EXPECT_EQ(chooser.proposal, home.dir.path() / "me");  // a dot in the name: no extension added

  chooser.answer = home.dir.path() / "picked.jpg";
  EXPECT_EQ(saveAllAttachments(one, true, home.dir.path(), chooser, home.prompt, &home.log),
            std::vector<fs::path>{home.dir.path() / "picked.jpg"});
  EXPECT_EQ(files::loadTextFile(home.dir.path() / "picked.jpg"), "\xFF\xD8\xFF");
  EXPECT_EQ(home.prompt.questions, 0);

  const auto several = withAttachments("data.bin");
  ASSERT_TRUE(files::ensureFolder(home.dir.path() / "sub"));
  chooser.answer = home.dir.path() / "sub" / "whatever";
  EXPECT_EQ(saveAllAttachments(several, true, home.dir.path(), chooser, home.prompt, &home.log).size(), 2u);
  EXPECT_EQ(chooser.proposal.filename(), "Click SAVE to save all files");
  EXPECT_TRUE(files::fileExists(home.dir.path() / "sub" / "data.bin"));
  EXPECT_EQ(home.prompt.lastQuestion, "All attachments saved to:\r\n" + (home.dir.path() / "sub").string());

  EXPECT_TRUE(saveAllAttachments(several, false, home.dir.path() / "gone", chooser, home.prompt, &home.log).empty());
  EXPECT_TRUE(home.prompt.lastQuestion.starts_with("Some attachments could not be saved to:"));
}

}  // namespace
}  // namespace vonel::message
