#include "support/store_generator.h"

#include <array>
#include <fstream>
#include <random>

#include "core/interaction/progress.h"
#include "core/message/message.h"
#include "core/store/folder_cache.h"

namespace vonel::testing {

namespace fs = std::filesystem;

namespace {

constexpr std::array kNames{"Ann Example",
                            "bob builder",
                            "Carla D\xED"
                            "az",
                            "dave O'Neil",
                            "Eve",
                            "frank Miller",
                            "Grace Hopper",
                            "heidi Klum",
                            "Ivan Petrov",
                            "judy"};
constexpr std::array kWords{"meeting", "Invoice", "report", "holiday", "Budget", "lunch",    "Project", "update",
                            "review",  "Photos",  "party",  "Urgent",  "plans",  "schedule", "Draft",   "minutes"};
constexpr std::array kTags{"", "", "", "work", "home", "work,urgent", "family", "bills"};

std::string twoDigits(int value) {
  return {static_cast<char>('0' + value / 10 % 10), static_cast<char>('0' + value % 10)};
}

}  // namespace

fs::path writeGeneratedMessage(const fs::path& folder, const GeneratedMessage& m) {
  std::string name = m.name;
  name = message::pathInReadCase(name, m.read);
  std::string text;
  text.reserve(m.bodyBytes + 512);
  text += "From: " + m.from + "\r\n";
  text += "To: " + m.to + "\r\n";
  text += "Subject: " + m.subject + "\r\n";
  text += "Date: " + m.sendDate + "\r\n";
  text += "Message-ID: <" + m.name + "@example.com>\r\n";
  text += "X-Receive-Date: " + text::formatStoreDate(m.received) + "\r\n";
  if (m.read) text += "X-Message-Read: 1\r\n";
  if (m.replied) text += "X-Message-Replied: 1\r\n";
  if (m.highPriority) text += "X-Message-HighPriority: 1\r\n";
  if (!m.tags.empty()) text += "X-Message-Tags: " + m.tags + "\r\n";
  text += "\r\n";
  // Lines of a plain body up to the asked size.
  static constexpr std::string_view kLine = "The quick brown fox jumps over the lazy dog again and again.\r\n";
  for (std::size_t written = 0; written < m.bodyBytes; written += kLine.size()) text += kLine;
  const fs::path file = folder / name;
  std::ofstream(file, std::ios::binary).write(text.data(), static_cast<std::streamsize>(text.size()));
  return file;
}

GeneratedFolder generateStoreFolder(AppContext& context, const fs::path& folder, const GeneratedFolderPlan& plan) {
  fs::create_directories(folder);
  std::mt19937 random(plan.seed);
  const auto pick = [&random](std::size_t count) { return static_cast<std::size_t>(random() % count); };
  GeneratedFolder result;
  result.files.reserve(plan.count);
  const double newest = plan.newest.serial();
  for (std::size_t i = 0; i < plan.count; ++i) {
    GeneratedMessage m;
    // Spread back over 60 days in arrival order, so that the last file is the newest.
    const double age =
        60.0 * static_cast<double>(plan.count - 1 - i) / static_cast<double>(std::max<std::size_t>(plan.count, 1));
    m.received = text::DateTime::fromSerial(newest - age);
    m.sendDate = text::formatStoreDate(text::DateTime::fromSerial(newest - age - 0.01));
    const text::DateTime& at = m.received;
    std::string number = std::to_string(i);
    m.name = "msg" + std::string(6 - std::min<std::size_t>(6, number.size()), '0') + number + " (" +
             twoDigits(at.hour) + twoDigits(at.minute) + twoDigits(at.second) + "-" + twoDigits(at.day) +
             twoDigits(at.month) + twoDigits(at.year) + ").eml";
    m.from = "\"" + std::string(kNames[pick(kNames.size())]) + "\" <user" + std::to_string(pick(50)) + "@example.com>";
    m.subject = std::string(kWords[pick(kWords.size())]) + " " + kWords[pick(kWords.size())];
    // One subject in twenty is long enough to be cut off in a narrow list.
    if (pick(20) == 0) {
      m.subject += " and a much longer tail that goes on about the " + std::string(kWords[pick(kWords.size())]) +
                   " for a good while";
    }
    m.tags = kTags[pick(kTags.size())];
    m.read = pick(4) != 0;
    m.replied = pick(5) == 0;
    m.highPriority = pick(10) == 0;
    // Mostly small, the odd one large: kilobyte counts of one and two digits both occur.
    m.bodyBytes = pick(50) == 0 ? 10000 + pick(50000) : 100 + pick(2500);
    result.files.push_back(writeGeneratedMessage(folder, m));
    if (!m.read) ++result.unread;
  }
  if (plan.warmCache) {
    SilentProgress quiet;
    store::FolderCache cache(context, quiet);
    cache.fillCache(quiet, folder, folder.filename().string());
    cache.writeCache(true);
  }
  return result;
}

}  // namespace vonel::testing
