// The text file form of WordTable.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <optional>

#include "core/bayes/word_table.h"
#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/files/path_text.h"
#include "core/log/log_places.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::bayes {
namespace {

constexpr std::string_view kModule = log_places::kWordTableModule;
constexpr std::string_view kHeaderLine = "Count, String";
// Room for the lines added after a table has been loaded.
constexpr std::int32_t kLoadHeadroom = 1000;

// The usual value of a line, " .99 " or "-2 ", read without the general reader.
// Both the digits and the power of ten are exact in a double, so the one
// division rounds as the general reader does.
std::optional<double> plainDecimal(std::string_view text) {
  text = text::trimView(text);
  const bool negative = !text.empty() && text.front() == '-';
  if (negative) text.remove_prefix(1);
  constexpr double kPowers[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  std::int64_t digits = 0;
  int count = 0;
  int decimals = -1;
  for (char c : text) {
    if (c == '.' && decimals < 0) {
      decimals = 0;
    } else if (c >= '0' && c <= '9' && count < 15) {
      digits = digits * 10 + (c - '0');
      ++count;
      if (decimals >= 0) ++decimals;
    } else {
      return std::nullopt;
    }
  }
  if (count == 0) return std::nullopt;
  const double value = static_cast<double>(digits) / kPowers[std::max(decimals, 0)];
  return negative ? -value : value;
}

// A file's number as a single float; out-of-range values take the nearest end.
float singleValue(std::string_view text) {
  const auto plain = plainDecimal(text);
  const double value = plain ? *plain : text::val(text);
  constexpr double kMax = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(value, -kMax, kMax));
}

}  // namespace

std::string WordTable::fileText() const {
  std::string out;
  out.reserve(static_cast<std::size_t>(lastRecord) * 24 + 32);
  out += kHeaderLine;
  out += "\r\n";
  out += text::printForm(static_cast<long long>(messageCount));
  out += "\r\n";
  for (std::int32_t i = 1; i <= lastRecord; ++i) {
    const auto at = static_cast<std::size_t>(i);
    if (keys_[at].empty()) continue;
    out += text::printForm(records_[at].value);
    out += ", ";
    out += keys_[at];
    out += "\r\n";
  }
  return out;
}

// Lines are cut at CR alone and each is taken from two characters after the
// previous CR, so a file with bare LF ends has no lines and one with bare CR
// ends loses the first character of each line: the sign column.
void WordTable::loadText(std::string_view bytes) {
  if (!initialised_) {
    const auto lines = static_cast<std::int32_t>(
        std::min<std::size_t>(std::count(bytes.begin(), bytes.end(), '\r'),
                              std::numeric_limits<std::int32_t>::max() / 2 - kLoadHeadroom));
    const std::int32_t n = lines + kLoadHeadroom;
    init(n, 2 * n);
  }
  const std::size_t firstCr = bytes.find('\r');
  if (firstCr == std::string_view::npos) return;
  std::size_t previousCr = bytes.find('\r', firstCr + 1);
  if (previousCr == std::string_view::npos) return;
  const double count = text::val(bytes.substr(firstCr + 1, previousCr - firstCr - 1));
  messageCount = text::toWhole<std::int32_t>(count);
  if (messageCount == 0) messageCount = 1;
  for (std::size_t cr = bytes.find('\r', previousCr + 1); cr != std::string_view::npos;
       previousCr = cr, cr = bytes.find('\r', cr + 1)) {
    const std::size_t start = std::min(previousCr + 2, cr);
    const std::string_view line = bytes.substr(start, cr - start);
    const std::size_t comma = line.find(',');
    if (comma == std::string_view::npos) continue;
    insertRecord(text::trimView(line.substr(comma + 1)), singleValue(line.substr(0, comma)));
  }
}

bool WordTable::writeHashTable(const std::filesystem::path& file, Log& log) const {
  return guardedStep(log, log_places::kWriteHashTable, kModule, [&] {
    if (files::fileExists(file)) files::makeReadWrite(file);
    files::writeTextFile(file, fileText());
  });
}

void WordTable::loadTable(const std::filesystem::path& file, Log& log) {
  if (!files::fileExists(file)) return;
  guardedStep(log, log_places::kLoadTable, kModule, [&] {
    const auto started = std::chrono::steady_clock::now();
    loadText(files::loadTextFile(file));
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - started;
    log.addAction("Hashtable loaded " + files::textFromPath(file) + " in " +
                  text::plainText(text::roundHalfEven(took.count(), 2)) + " seconds.",
                  log_places::kLoadTable, kModule);
  });
}

}  // namespace vonel::bayes
