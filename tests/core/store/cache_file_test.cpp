#include "core/store/cache_file.h"

#include <gtest/gtest.h>

#include "core/files/file_text.h"
#include "core/store/cache_text.h"
#include "core/text/strings.h"

namespace vonel::store {
namespace {

namespace fs = std::filesystem;

std::string golden() { return files::loadTextFile(fs::path(VONEL_TEST_DATA) / "store" / "cache.xml"); }

const FileExistsTest kEverythingExists = [](const fs::path&) { return true; };

// The messages read, or nothing when the file's version is refused.
std::optional<std::vector<CachedMessage>> read(std::string_view text, const fs::path& root,
                                               const FileExistsTest& exists = kEverythingExists) {
  std::vector<CachedMessage> messages;
  if (readCacheText(text, root, exists, [&](CachedMessage&& m) { messages.push_back(std::move(m)); }) !=
      CacheTextRead::Whole) {
    return {};
  }
  return messages;
}

TEST(CacheTextTest, EscapingKeepsOnlyLettersDigitsAndFourMarks) {
  EXPECT_EQ(htmlEncode("a.b,c:d?Z9"), "a.b,c:d?Z9");
  EXPECT_EQ(htmlEncode("a b\n<&>%\xE9"), "a%20b%0A%3C%26%3E%25%E9");
  std::string every;
  for (int c = 0; c < 256; ++c) every += static_cast<char>(c);
  EXPECT_EQ(htmlDecode(htmlEncode(every)), every);
}

TEST(CacheTextTest, DecodingForgivesWhatTheWriterNeverWrites) {
  EXPECT_EQ(htmlDecode("plain <text>"), "plain <text>");
  EXPECT_EQ(htmlDecode("50%"), "50%");
  EXPECT_EQ(htmlDecode("x%4"), "x%4");
  EXPECT_EQ(htmlDecode("%zzA"), std::string("\0A", 2));
  EXPECT_EQ(htmlDecode("%41%4a"), "AJ");
  // An escape takes its two characters, read as far as the digits go and
  // blanks passed over; text on both sides of escapes kept.
  EXPECT_EQ(htmlDecode("%4zB"), "\x04" "B");
  EXPECT_EQ(htmlDecode("a% 41b"), "a\x04" "1b");
  EXPECT_EQ(htmlDecode("%4\t1"), "\x04" "1");
  EXPECT_EQ(htmlDecode("%-1%+1"), std::string("\0\0", 2));
  EXPECT_EQ(htmlDecode("lead %20 mid %%41 tail%"), std::string("lead   mid \0" "1 tail%", 19));
}

TEST(CacheTextTest, ExtractionIgnoresCaseAndRunsToTheEndWithoutACloseTag) {
  EXPECT_EQ(extractBetweenTags("<a><Size>5</SIZE>", "<SIZE>", "</SIZE>"), "5");
  EXPECT_EQ(extractBetweenTags("<x>1<x>2", "<X>", "</X>"), "12");
  EXPECT_EQ(extractBetweenTags("nothing", "<X>", "</X>"), "");
  EXPECT_TRUE(extractBool("<R>-1</R>", "<R>", "</R>"));
  EXPECT_FALSE(extractBool("<R>1</R>", "<R>", "</R>"));
  // The version element has never been closed; its number still reads.
  EXPECT_EQ(cacheFileVersion("\t<CACHEVER>3<CACHEVER>\r\n\t<MESSAGES>7"), 3);
  EXPECT_EQ(cacheFileVersion("<cachever>2</cachever>"), 2);
  EXPECT_EQ(cacheFileVersion("<VONELCACHE></VONELCACHE>"), 0);
}

TEST(CacheFileTest, AHandWrittenFileReadsWithItsPathsRebasedOntoThisStore) {
  const fs::path root = "/data/Messages";
  std::vector<fs::path> asked;
  const auto messages = read(golden(), root, [&](const fs::path& file) {
    asked.push_back(file);
    return true;
  });
  ASSERT_TRUE(messages);
  ASSERT_EQ(messages->size(), 2u);
  const CachedMessage& first = (*messages)[0];
  EXPECT_EQ(asked[0], root / "Inbox" / "HELLO THERE (093015-231126).EML");
  EXPECT_EQ(first.filename, (root / "Inbox" / "hello there (093015-231126).eml").string());
  EXPECT_EQ(first.size, 3.0f);
  EXPECT_EQ(first.bayes, 0.0f);
  EXPECT_EQ(first.fileDate, (text::DateTime{2026, 11, 23, 9, 30, 15}));
  EXPECT_EQ(first.sendDate, "Mon, 23 Nov 2026 09:00:00 +0100");
  EXPECT_EQ(first.from, "Ann \xC9mile <ann@example.com>");
  EXPECT_EQ(first.subject, "Hello & <there> 100%");
  EXPECT_FALSE(first.read);
  EXPECT_TRUE(first.hasAttachment);
  EXPECT_EQ(first.tags, "");
  const CachedMessage& second = (*messages)[1];
  EXPECT_EQ(second.filename, (root / "Inbox" / "Work" / "re report (101500-201126).eml").string());
  EXPECT_EQ(second.bayes, 0.25f);
  EXPECT_TRUE(second.read && second.replied && second.highPriority);
  EXPECT_EQ(second.tags, "work,urgent");
}

TEST(CacheFileTest, ALongReadAsksToGoOnAtFixedCountsAndStopsWhereTold) {
  const fs::path root = "/data/Messages";
  std::string text(cacheFileHead());
  for (int i = 0; i < 200; ++i) {
    CachedMessage m;
    m.filename = (root / "Inbox" / ("m" + std::to_string(i) + ".eml")).string();
    appendCacheElement(text, m, std::nullopt);
  }
  text.append(cacheFileTail());
  for (const int stopAt : {0, 1, 2}) {
    SCOPED_TRACE(stopAt);
    int asked = 0;
    std::size_t handed = 0;
    const CacheTextRead read = readCacheText(
        text, root, kEverythingExists, [&](CachedMessage&&) { ++handed; }, [&] { return ++asked != stopAt; });
    EXPECT_EQ(read, stopAt == 0 ? CacheTextRead::Whole : CacheTextRead::Stopped);
    EXPECT_EQ(asked, stopAt == 0 ? 3 : stopAt);
    EXPECT_EQ(handed, stopAt == 0 ? 200u : static_cast<std::size_t>(64 * stopAt - 1));
  }
  EXPECT_EQ(readCacheText("<CACHEVER>2", root, kEverythingExists, [](CachedMessage&&) {}, [] { return false; }),
            CacheTextRead::TooOld);
}

TEST(CacheFileTest, TheWriterLaysOutTheFileByteForByte) {
  const auto messages = read(golden(), "/nowhere");
  ASSERT_TRUE(messages);
  std::string written(cacheFileHead());
  const text::DateTime dates[] = {{2026, 11, 23, 9, 30, 15}, {2026, 11, 20, 10, 15, 0}};
  const std::string paths[] = {R"(C:\Mail\Messages\Inbox\hello there (093015-231126).eml)",
                               R"(C:\Mail\Messages\Inbox\Work\re report (101500-201126).eml)"};
  for (std::size_t i = 0; i < 2; ++i) {
    CachedMessage m = (*messages)[i];
    m.filename = paths[i];  // as a store moved from a Windows machine would hold it
    appendCacheElement(written, m, dates[i]);
  }
  written.append(cacheFileTail());
  EXPECT_EQ(written, golden());
}

TEST(CacheFileTest, TheReaderTakesTheSpellingsItAsksFor) {
  const std::string upper = text::upper(golden());
  const auto messages = read(upper, "/data/Messages");
  ASSERT_TRUE(messages);
  ASSERT_EQ(messages->size(), 2u);
  EXPECT_EQ((*messages)[1].tags, "WORK,URGENT");
}

TEST(CacheFileTest, OldVersionsAndBrokenFilesGiveWhatCanBeRead) {
  EXPECT_FALSE(read(text::replaceAll(golden(), "<CACHEVER>3", "<CACHEVER>2"), "/r"));
  EXPECT_FALSE(read("", "/r"));
  // Cut in the middle of the second message: only the first, whole one is read.
  const std::string cut = golden().substr(0, golden().find("<Bayes>"));
  const auto messages = read(cut, "/r");
  ASSERT_TRUE(messages);
  EXPECT_EQ(messages->size(), 1u);
  // A listed file that is gone is left out.
  const auto present = read(golden(), "/r", [](const fs::path& f) { return f.string().find("Work") == std::string::npos; });
  EXPECT_EQ(present->size(), 1u);
}

TEST(CacheFileTest, PathsAreRebasedThroughTheRootOrTheMessagesFolder) {
  EXPECT_EQ(rebaseCachedPath("/old/home/Messages/Inbox/A.EML", "/new/store"), fs::path("/new/store/Inbox/A.EML"));
  EXPECT_EQ(rebaseCachedPath("/new/STORE/Inbox/A.EML", "/new/store"), fs::path("/new/store/Inbox/A.EML"));
  EXPECT_EQ(rebaseCachedPath(R"(D:\x\MESSAGES\Sent Items\B.EML)", "/s"), fs::path("/s/Sent Items/B.EML"));
  EXPECT_EQ(rebaseCachedPath("/elsewhere/C.EML", "/s"), fs::path("/elsewhere/C.EML"));
}

}  // namespace
}  // namespace vonel::store
