// Full parse with every part decoded: createFromText(text, false), the exact
// bytes of each part as a save would write them, and the text to show. Prints
// messages and megabytes per second of processor time over generated mail
// (plain, alternative, attachments, nested), and the peak memory of one
// 50 MB message read and parsed in a process of its own.
//   bench_mime               generated mail, then the 50 MB message
//   bench_mime --corpus DIR  also every file in the folders under DIR, file reading included
//                            (LF line ends become CR LF, as POP3 delivers them)
//   bench_mime --one FILE    reads and parses one file (the 50 MB run uses it)
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "core/message/attachment_files.h"
#include "core/message/message.h"
#include "core/message/plain_text.h"
#include "core/message/transfer_encoding.h"
#include "core/files/atomic_file.h"
#include "core/files/file_text.h"

namespace {

using vonel::message::Message;

constexpr int kMessages = 6000;

class MimeMailGenerator {
 public:
  std::string message() {
    const std::size_t kind = next(20);
    if (kind < 10) return headers("text/plain; charset=iso-8859-1") + "\r\n" + words(range(500, 8000));
    if (kind < 15) return headers(multipartType("alternative", "a")) + "\r\n" + alternative("a");
    if (kind < 19) return headers(multipartType("mixed", "m")) + "\r\n" + mixed("m", "");
    return headers(multipartType("mixed", "m")) + "\r\n" + mixed("m", "a");
  }

  // One message carrying a 50 MB attachment.
  std::string huge() {
    std::string data(37'500'000, '\0');
    for (char& c : data) c = static_cast<char>(next(256));
    return headers(multipartType("mixed", "m")) + "\r\n--m\r\nContent-Type: text/plain\r\n\r\nbig one\r\n" +
           attachment("m", "archive.zip", data) + "--m--\r\n";
  }

 private:
  std::size_t next(std::size_t below) { return std::uniform_int_distribution<std::size_t>(0, below - 1)(random_); }
  std::size_t range(std::size_t low, std::size_t high) { return low + next(high - low + 1); }

  std::string words(std::size_t size) {
    static const char* const kWords[] = {"meeting", "invoice", "hello", "project", "update", "the", "and",
                                         "report",  "caf\xE9",  "offer", "tomorrow", "price", "=", "na\xEFve"};
    std::string text;
    std::size_t lineLength = 0;
    while (text.size() < size) {
      const std::string w = kWords[next(std::size(kWords))];
      text += w;
      lineLength += w.size();
      text += lineLength > 70 ? "\r\n" : " ";
      if (lineLength > 70) lineLength = 0;
    }
    return text + "\r\n";
  }

  std::string quotedPrintable(std::string_view text) {
    std::string out;
    std::size_t lineLength = 0;
    for (const char c : text) {
      const auto byte = static_cast<unsigned char>(c);
      if (c == '\r' || c == '\n') {
        out += c;
        lineLength = 0;
        continue;
      }
      char piece[4];
      std::snprintf(piece, sizeof piece, byte >= 128 || c == '=' ? "=%02X" : "%c", byte);
      if (lineLength > 72) {
        out += "=\r\n";
        lineLength = 0;
      }
      out += piece;
      lineLength += std::string_view(piece).size();
    }
    return out;
  }

  static std::string multipartType(std::string_view subtype, std::string_view boundary) {
    return "multipart/" + std::string(subtype) + "; boundary=\"" + std::string(boundary) + "_=_boundary\"";
  }

  std::string headers(std::string_view contentType) {
    std::string h = "Return-Path: <sender" + std::to_string(next(999)) + "@example.com>\r\n";
    for (std::size_t i = range(2, 6); i > 0; --i) {
      h += "Received: from mx" + std::to_string(next(99)) + ".example.net (mx.example.net [192.0.2." +
           std::to_string(next(255)) + "])\r\n\tby mail.example.org with ESMTP id " + std::to_string(next(1u << 30)) +
           "\r\n\tfor <me@example.org>; Mon, 1 Jan 2024 10:00:00 +0100\r\n";
    }
    h += "From: =?iso-8859-1?Q?Ren=E9_Dupont?= <rene@example.com>\r\nTo: Me <me@example.org>\r\n";
    h += "Subject: project update " + std::to_string(next(1000)) + "\r\n";
    h += "Date: Tue, 02 Jan 2024 10:" + std::to_string(10 + next(50)) + ":00 +0100\r\n";
    h += "Message-ID: <" + std::to_string(next(1u << 30)) + "@example.com>\r\nMIME-Version: 1.0\r\n";
    return h + "Content-Type: " + std::string(contentType) + "\r\n";
  }

  std::string alternative(std::string_view boundary) {
    const std::string marker = "--" + std::string(boundary) + "_=_boundary";
    const std::string text = words(range(500, 6000));
    return "This is a multi-part message in MIME format.\r\n\r\n" + marker +
           "\r\nContent-Type: text/plain; charset=iso-8859-1\r\nContent-Transfer-Encoding: quoted-printable\r\n\r\n" +
           quotedPrintable(text) + marker + "\r\nContent-Type: text/html; charset=iso-8859-1\r\n\r\n<html><body><p>" +
           text + "</p><blockquote>quoted<br>text</blockquote></body></html>\r\n" + marker + "--\r\n";
  }

  std::string attachment(std::string_view boundary, std::string_view name, std::string_view data) {
    const std::string encoded = vonel::message::encodeMime64String(data);
    std::string part = "--" + std::string(boundary) + "_=_boundary\r\nContent-Type: application/octet-stream; name=\"" +
                       std::string(name) + "\"\r\nContent-Transfer-Encoding: base64\r\n" +
                       "Content-Disposition: attachment; filename=\"" + std::string(name) + "\"\r\n\r\n";
    part.reserve(part.size() + encoded.size() / 76 * 78 + 80);
    for (std::size_t i = 0; i < encoded.size(); i += 76) part.append(encoded, i, 76).append("\r\n");
    return part;
  }

  // A plain part (or a nested alternative) and one or two base64 attachments.
  std::string mixed(std::string_view boundary, std::string_view nested) {
    const std::string marker = "--" + std::string(boundary) + "_=_boundary";
    std::string body = "This is a multi-part message in MIME format.\r\n\r\n" + marker + "\r\n";
    body += nested.empty() ? "Content-Type: text/plain\r\n\r\n" + words(range(200, 3000))
                           : "Content-Type: " + multipartType("alternative", nested) + "\r\n\r\n" + alternative(nested);
    for (std::size_t i = range(1, 2); i > 0; --i) {
      std::string data(range(2000, 60000), '\0');
      for (char& c : data) c = static_cast<char>(next(256));
      body += attachment(boundary, "file" + std::to_string(i) + ".bin", data);
    }
    return body + marker + "--\r\n";
  }

  std::mt19937_64 random_{20240102};
};

// Everything a full read of one message does, and a save of its parts would.
std::size_t parseAndDecode(std::string text) {
  Message message;
  message.createFromText(std::move(text), false);
  std::size_t bytes = vonel::message::extractPlainMessage(message, false).size();
  for (std::size_t i = 1; i <= message.mimePartCount(); ++i) {
    const auto& part = message.mimePart(i);
    bytes += vonel::message::decodedPartBytes(part.data, part.encoding).size();
  }
  return bytes;
}

void report(const char* label, std::size_t count, std::size_t bytes, std::clock_t elapsed, std::size_t checksum) {
  const double seconds = static_cast<double>(elapsed) / CLOCKS_PER_SEC;
  std::printf("%-34s %8.0f messages/s %8.1f MB/s  (%zu messages, %.1f MB, checksum %zu)\n", label,
              static_cast<double>(count) / seconds, static_cast<double>(bytes) / seconds / 1e6, count,
              static_cast<double>(bytes) / 1e6, checksum);
}

void timeGenerated() {
  MimeMailGenerator generator;
  std::vector<std::string> texts;
  std::size_t bytes = 0;
  for (int i = 0; i < kMessages; ++i) {
    texts.push_back(generator.message());
    bytes += texts.back().size();
  }
  std::size_t checksum = 0;
  const std::clock_t start = std::clock();
  for (const auto& text : texts) checksum += parseAndDecode(text);
  report("generated, full parse and decode", texts.size(), bytes, std::clock() - start, checksum);
}

// The file as POP3 would have delivered it: CR LF line ends, no mbox "From " line.
std::string asDelivered(std::string_view file) {
  if (file.starts_with("From ")) file.remove_prefix(std::min(file.size(), file.find('\n') + 1));
  std::string text;
  text.reserve(file.size() + file.size() / 32);
  for (std::size_t at = 0; at < file.size();) {
    const std::size_t lineEnd = file.find('\n', at);
    const std::size_t end = lineEnd == std::string_view::npos ? file.size() : lineEnd;
    text.append(file, at, end - at);
    if (lineEnd == std::string_view::npos) break;
    if (text.empty() || text.back() != '\r') text += '\r';
    text += '\n';
    at = lineEnd + 1;
  }
  return text;
}

void timeCorpus(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  // The messages lie in the group folders; files beside them, and the JSON
  // copies of each message, are the corpus's own indexes.
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file() && entry.path().parent_path() != folder && entry.path().extension() != ".json") {
      files.push_back(entry.path());
    }
  }
  std::size_t bytes = 0;
  std::size_t checksum = 0;
  const std::clock_t start = std::clock();
  for (const auto& file : files) {
    const std::string text = vonel::files::loadTextFile(file);
    bytes += text.size();
    checksum += parseAndDecode(asDelivered(text));
  }
  report("corpus, read, parse and decode", files.size(), bytes, std::clock() - start, checksum);
}

// Reads and parses one message file; run in a process of its own by
// peakForHugeMessage, so that the peak it leaves is this message's alone.
int parseOneFile(const char* file) {
  const std::clock_t start = std::clock();
  std::string text = vonel::files::loadTextFile(file);
  const double megabytes = static_cast<double>(text.size()) / 1e6;
  const std::size_t decoded = parseAndDecode(std::move(text));
  const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  std::printf("one %.1f MB message: %.2f s, %.1f MB/s, %zu bytes decoded\n", megabytes, seconds, megabytes / seconds,
              decoded);
  return 0;
}

void peakForHugeMessage(const char* self) {
  const auto file = std::filesystem::temp_directory_path() / ("bench_mime_" + std::to_string(getpid()) + ".eml");
  vonel::files::writeTextFile(file, MimeMailGenerator().huge());
  std::fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    execl(self, self, "--one", file.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  std::filesystem::remove(file);
  rusage children{};
  getrusage(RUSAGE_CHILDREN, &children);
  std::printf("peak memory of that process: %.1f MB (ru_maxrss, file text included)\n",
              static_cast<double>(children.ru_maxrss) / 1024.0);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view mode = argc == 3 ? argv[1] : "";
  if (mode == "--one") return parseOneFile(argv[2]);
  timeGenerated();
  if (mode == "--corpus") timeCorpus(argv[2]);
  peakForHugeMessage("/proc/self/exe");
  return 0;
}
