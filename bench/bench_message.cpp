// Times createFromText over generated mail: header-only and full parses of
// the same set, and header-only over what a scan really reads (headers and
// one body line). Prints messages per second and megabytes per second of
// processor time, so that a busy machine skews the figures less.
#include <ctime>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "core/message/message.h"
#include "core/message/transfer_encoding.h"

namespace {

using vonel::message::Message;

constexpr int kMessages = 5000;

class MailGenerator {
 public:
  std::string message() {
    const std::string boundary = "----=_Part_" + std::to_string(next(1000000));
    const bool multipart = next(3) == 0;
    std::string text = headers(multipart, boundary);
    text += "\r\n";
    text += multipart ? multipartBody(boundary) : words(range(1024, 200 * 1024));
    return text;
  }

 private:
  std::size_t next(std::size_t below) { return std::uniform_int_distribution<std::size_t>(0, below - 1)(random_); }
  std::size_t range(std::size_t low, std::size_t high) { return low + next(high - low + 1); }

  std::string word() {
    static const char* const kWords[] = {"meeting", "invoice", "hello",  "project", "update",   "the",
                                         "and",     "report",  "caf\xE9", "offer",   "tomorrow", "price"};
    return kWords[next(std::size(kWords))];
  }

  // Lines of about 70 characters until the size is reached.
  std::string words(std::size_t size) {
    std::string text;
    text.reserve(size + 80);
    std::size_t lineLength = 0;
    while (text.size() < size) {
      const std::string w = word();
      text += w;
      lineLength += w.size();
      if (lineLength > 70) {
        text += "\r\n";
        lineLength = 0;
      } else {
        text += ' ';
      }
    }
    return text + "\r\n";
  }

  std::string headers(bool multipart, const std::string& boundary) {
    const std::size_t target = range(1024, 8 * 1024);
    std::string h = "Return-Path: <sender" + std::to_string(next(999)) + "@example.com>\r\n";
    while (h.size() < target) {
      h += "Received: from mx" + std::to_string(next(99)) + ".example.net (mx.example.net [192.0.2." +
           std::to_string(next(255)) + "])\r\n\tby mail.example.org with ESMTP id " + std::to_string(next(1u << 30)) +
           "\r\n\tfor <me@example.org>; Mon, 1 Jan 2024 10:00:00 +0100\r\n";
      if (next(4) == 0) {
        h += "DKIM-Signature: v=1; a=rsa-sha256; d=example.com; s=sel;\r\n h=received:from:to:subject;\r\n b=" +
             std::string(range(40, 300), 'Q') + "\r\n";
      }
    }
    h += "From: =?iso-8859-1?Q?Ren=E9_Dupont?= <rene@example.com>\r\n";
    h += "To: Me <me@example.org>\r\nCc: team@example.org\r\n";
    h += "Subject: =?utf-8?B?" + vonel::message::encodeMime64String(word() + " " + word()) + "?= " + word() + "\r\n";
    h += "Date: Tue, 02 Jan 2024 10:" + std::to_string(10 + next(50)) + ":00 +0100\r\n";
    h += "Message-ID: <" + std::to_string(next(1u << 30)) + "@example.com>\r\nX-Mailer: Generator 1.0\r\n";
    h += "X-Spam-Status: No, score=-1.0\r\nMIME-Version: 1.0\r\n";
    h += multipart ? "Content-Type: multipart/mixed; boundary=\"" + boundary + "\"\r\n"
                   : "Content-Type: text/plain; charset=iso-8859-1\r\n";
    return h;
  }

  std::string multipartBody(const std::string& boundary) {
    std::string body = "This is a multi-part message.\r\n\r\n--" + boundary + "\r\n";
    body += "Content-Type: text/plain; charset=iso-8859-1\r\nContent-Transfer-Encoding: quoted-printable\r\n\r\n";
    body += words(range(512, 20 * 1024));
    body += "--" + boundary + "\r\nContent-Type: text/html\r\n\r\n<html><body><p>" + words(range(512, 20 * 1024)) +
            "</p></body></html>\r\n";
    body += "--" + boundary + "\r\nContent-Type: application/pdf; name=\"file.pdf\"\r\n"
            "Content-Transfer-Encoding: base64\r\n\r\n";
    const std::string encoded = vonel::message::encodeMime64String(words(range(1024, 120 * 1024)));
    for (std::size_t i = 0; i < encoded.size(); i += 76) body += encoded.substr(i, 76) + "\r\n";
    return body + "--" + boundary + "--\r\n";
  }

  std::mt19937_64 random_{20240102};
};

// The parse pays for its own copy of each text, as a caller that keeps its text does.
void timeParse(const char* label, const std::vector<std::string>& texts, bool headerOnly, int rounds) {
  std::size_t bytes = 0;
  for (const auto& text : texts) bytes += text.size();
  std::size_t checksum = 0;
  const std::clock_t start = std::clock();
  for (int round = 0; round < rounds; ++round) {
    for (const auto& text : texts) {
      Message message;
      message.createFromText(text, headerOnly);
      checksum += message.subject.size() + message.strippedBody.size();
    }
  }
  const std::clock_t elapsed = std::clock() - start;
  const double seconds = static_cast<double>(elapsed) / CLOCKS_PER_SEC;
  const double count = static_cast<double>(texts.size()) * rounds;
  std::printf("%-42s %8.0f messages/s %9.1f MB/s  (%zu messages, %.1f MB, checksum %zu)\n", label, count / seconds,
              static_cast<double>(bytes) * rounds / seconds / 1e6, texts.size(), static_cast<double>(bytes) / 1e6,
              checksum);
}

}  // namespace

int main() {
  MailGenerator generator;
  std::vector<std::string> messages;
  std::vector<std::string> scanned;  // what a header scan receives: headers and one body line
  for (int i = 0; i < kMessages; ++i) {
    messages.push_back(generator.message());
    const std::size_t blankLine = messages.back().find("\r\n\r\n");
    scanned.push_back(messages.back().substr(0, messages.back().find("\r\n", blankLine + 4) + 2));
  }
  timeParse("CreateFromText(text, true)", messages, true, 3);
  timeParse("CreateFromText(text, false)", messages, false, 1);
  timeParse("CreateFromText(scanned, true)", scanned, true, 5);
  return 0;
}
