#pragma once
// Gathers an SMTP server's replies from received bytes split anywhere: the
// lines of a multi-line reply ("250-...") up to its last line ("250 ...").
// What it keeps is bounded however long a line or a reply runs.
#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace vonel::smtp {

struct SmtpReply {
  int code = 0;  // of the last line; 0 when it holds no three-digit code
  // The reply's lines without CR LF, codes included.
  std::vector<std::string> lines;

  // A line's text after its code and separator.
  static std::string_view textOf(std::string_view line);
  // The last line's text, trimmed: what a failure reports.
  std::string text() const;
  // The whole reply on one line, codes included, lines joined by blanks.
  std::string whole() const;
};

class SmtpReplyReader {
 public:
  // Lines are kept up to this length, replies up to this many lines; the
  // rest is read and dropped.
  static constexpr std::size_t kLongestKeptLine = 1000;
  static constexpr std::size_t kMostKeptLines = 200;

  void add(std::string_view bytes);
  bool hasReply() const { return !complete_.empty(); }
  // The oldest complete reply; only when hasReply().
  SmtpReply take();
  void clear();

 private:
  void endLine();

  std::string line_;  // the line being read, cut at kLongestKeptLine
  SmtpReply gathering_;
  std::deque<SmtpReply> complete_;
};

}  // namespace vonel::smtp
