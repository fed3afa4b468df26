#include "core/bayes/tokeniser.h"

#include <algorithm>

#include "core/message/address.h"
#include "core/text/strings.h"

namespace vonel::bayes {
namespace {

constexpr std::size_t kShortestWord = 3;
constexpr std::size_t kLongestWord = 35;
constexpr std::size_t kLongestPhrase = 50;
constexpr std::size_t kLongestUrl = 50;

// A search whose start only moves forward remembers its last hit, so a walk
// over a long text without the needle stays linear.
class ForwardSearch {
 public:
  ForwardSearch(std::string_view text, std::string_view needle) : text_(text), needle_(needle) {}
  std::size_t from(std::size_t start) {
    if (!searched_ || start < searchedFrom_ || (hit_ != 0 && hit_ < start)) {
      hit_ = text::find(text_, needle_, start);
      searchedFrom_ = start;
      searched_ = true;
    }
    return hit_;
  }
  std::size_t length() const { return needle_.size(); }

 private:
  std::string_view text_;
  std::string_view needle_;
  std::size_t searchedFrom_ = 0;
  std::size_t hit_ = 0;
  bool searched_ = false;
};

void takeEarlier(std::size_t hit, std::size_t length, std::size_t& lowest) {
  if (hit > 0 && (lowest == 0 || hit < lowest)) lowest = hit + length - 1;
}

void getLowest(std::size_t start, ForwardSearch& search, std::size_t& lowest) {
  takeEarlier(search.from(start), search.length(), lowest);
}

bool contains(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

bool isOneOf(char c, std::string_view characters) { return characters.find(c) != std::string_view::npos; }

// Each of the characters becomes a blank, in one pass.
void blankEach(std::string& text, std::string_view characters) {
  std::replace_if(text.begin(), text.end(), [characters](char c) { return isOneOf(c, characters); }, ' ');
}

std::string afterFirstAt(const std::string& word) { return word.substr(word.find('@') + 1); }

// Cuts the word to start at the marker and to end before the first "/"
// found from `slashFrom`; a host with a user part keeps only the host.
std::string cutAtMarker(std::string word, std::string_view marker, std::size_t slashFrom) {
  const std::size_t at = text::findNoCase(word, marker);
  if (at == 0) return word;
  word = text::mid(word, at);
  const std::size_t slash = text::find(word, "/", slashFrom);
  if (slash > 0) {
    word = text::left(word, slash - 1);
    if (contains(word, "@")) word = afterFirstAt(word);
  }
  return word;
}

// The address's host again under the prefix, whole and piece by piece:
// "mail.example.org" gives "mail", ".example" and ".org" too.
void hashAddressHost(WordTable& table, std::string_view prefix, const std::string& word) {
  const std::string address = cleanThisWord(word);
  const std::size_t at = address.find('@');
  if (at == std::string::npos || at + 1 == address.size()) return;
  const std::string domain = address.substr(at + 1);
  const std::string p(prefix);
  table.addCount(p + domain);
  const auto pieces = text::split(domain, ".");
  table.addCount(p + pieces.front());
  for (std::size_t i = 1; i < pieces.size(); ++i) table.addCount(p + "." + pieces[i]);
}

void hashWord(WordTable& table, std::string_view prefix, const std::string& word, const std::string& last) {
  const std::string p(prefix);
  if (prefix == "RCT*") {
    const std::string lastUpper = text::upper(last);
    if (lastUpper == "HELO") {
      table.addCount(word);
    } else if (lastUpper == "FROM" && word != "network;") {
      table.addCount(last + " " + word);
    }
  } else if (prefix == "CT*") {
    if (contains(word, "/")) table.addCount(p + text::replaceAll(word, ";", ""));
  } else if (prefix == "HDR*") {
    if (!contains(word, ":") && text::findNoCase(word, "boundary") == 0 && !allNumerics(word)) table.addCount(p + word);
  } else if (prefix == "SUB*") {
    table.addCount(p + word);
  } else if (!allNumerics(word)) {
    table.addCount(p + word);
    if (contains(word, "@")) hashAddressHost(table, prefix, word);
  }
}

// "http://", "https://" and "/" gone, the host after a user part, cut at a
// quote or ">", without one trailing ".".
std::string cleanUrl(std::string url) {
  url = text::replaceAll(url, "http://", "");
  url = text::replaceAll(url, "https://", "");
  url = text::replaceAll(url, "/", "");
  if (contains(url, "@")) url = afterFirstAt(url);
  url = url.substr(0, url.find('"'));
  url = url.substr(0, url.find('>'));
  if (!url.empty() && url.back() == '.') url.pop_back();
  return url;
}

}  // namespace

void getLowest(std::size_t start, std::string_view text, std::string_view find, std::size_t& lowest) {
  takeEarlier(text::find(text, find, start), find.size(), lowest);
}

std::string cleanThisWord(std::string word) {
  std::erase_if(word, [](char c) { return (c >= 1 && c <= 30) || isOneOf(c, "<>`~^'\",(){}[]"); });
  return text::trim(word);
}

bool allNumerics(std::string_view word) {
  return std::all_of(word.begin(), word.end(), [](char c) { return (c >= '0' && c <= '9') || c == '-' || c == '+'; });
}

std::string cleanNumbers(std::string_view text) {
  std::string out(text);
  std::erase_if(out, [](char c) { return c >= '0' && c <= '9'; });
  return out;
}

std::string extractIfUrl(std::string word) {
  word = cutAtMarker(std::move(word), "http://", 8);
  return cutAtMarker(std::move(word), "www.", 5);
}

void breakAndHash(WordTable& table, std::string text, std::string_view prefix) {
  if (text.empty() || text::findNoCase(text, "boundary=") > 0) return;
  text = text::replaceAll(text, "\r\n", " ");
  blankEach(text, "\r\n\t");
  if (contains(text, " ") && text.size() <= kLongestPhrase) table.addCount(std::string(prefix) + text);
  if (prefix != "HDR*" && prefix != "SB-LN*" && prefix != "SB-ND*") blankEach(text, "=,*-()");

  ForwardSearch blanks(text, " ");
  ForwardSearch closers(text, ">");
  std::string last;
  std::size_t pos = 1;
  do {
    const std::size_t start = pos;
    pos = blanks.from(start + 1);
    getLowest(start + 1, closers, pos);
    const std::size_t length = pos > 0 ? pos - start + 1 : std::string_view::npos;
    std::string word(text::trimView(std::string_view(text).substr(start - 1, length)));
    if (word.size() < kShortestWord) continue;
    if (word.size() > kLongestWord) {
      last = std::move(word);
      continue;
    }
    word = text::left(word, 2) == "<!" ? "HTMLCOMMENT" : cleanThisWord(std::move(word));
    if (prefix.empty() && !contains(word, "@") && text::findNoCase(word, "http") == 0) std::erase(word, '.');
    if (contains(word, ".")) word = extractIfUrl(std::move(word));
    hashWord(table, prefix, word, last);
    last = std::move(word);
  } while (pos > 0);
}

// The last URL of a body is counted twice: the final pass finds no further
// link and counts the one it still holds. Each count cleans the URL as found.
void hashUrls(WordTable& table, std::string_view body) {
  if (body.empty()) return;
  const std::string text = text::lower(body);
  if (!contains(text, "www.") && !contains(text, "http://") && !contains(text, "https://")) return;

  ForwardSearch plain(text, "http://"), secure(text, "https://"), bare(text, "www.");
  ForwardSearch slash(text, "/"), quote(text, "\""), blank(text, " "), com(text, ".com"), biz(text, ".biz"),
      info(text, ".info");
  std::string url;
  std::size_t pos = 1;
  do {
    const std::size_t start = pos;
    pos = plain.from(start + 1);
    getLowest(start + 1, secure, pos);
    getLowest(start + 1, bare, pos);
    if (pos > 0) {
      std::size_t end = slash.from(pos + 8);
      for (ForwardSearch* stop : {&quote, &blank, &com, &biz, &info}) getLowest(pos + 8, *stop, end);
      url = end != 0 ? text::trim(text::mid(text, pos, end - pos + 1)) : std::string();
    }
    if (url.size() >= kShortestWord && url.size() <= kLongestUrl) table.addCount("URL*" + cleanUrl(url));
  } while (pos > 0);
}

void hashMessage(WordTable& table, const message::Message& message, bool headersOnly) {
  const std::string linked = text::replaceAll(message.subject, " ", "_");
  const std::string noDigits = cleanNumbers(linked);
  breakAndHash(table, message.subject, "SUB*");
  breakAndHash(table, linked, "SB-LN*");
  if (!text::equalsNoCase(text::trimView(linked), text::trimView(noDigits))) breakAndHash(table, noDigits, "SB-ND*");

  const auto nameThenAddress = [&table](const std::string& field, std::string_view prefix) {
    breakAndHash(table, message::extractName(field), prefix);
    breakAndHash(table, message::extractEmail(field), prefix);
  };
  nameThenAddress(message.toEmail(), "TO*");
  nameThenAddress(message.sender, "SNDR*");
  nameThenAddress(message.from, "FRM*");
  nameThenAddress(message.replyTo, "RPLYTO*");
  breakAndHash(table, message.xEnvelopeTo, "XTO*");
  breakAndHash(table, message.contentTypeMain, "CT*");
  breakAndHash(table, message.bcc, "BCC*");
  breakAndHash(table, message.cc, "CC*");
  breakAndHash(table, message.received, "RCT*");
  breakAndHash(table, message.userAgent, "UA*");
  breakAndHash(table, message.origIp, "IP*");
  breakAndHash(table, message.xMailer, "XMLR*");
  breakAndHash(table, message.headers, "HDR*");

  if (headersOnly) return;
  hashUrls(table, message.htmlStrippedBody.empty() ? message.strippedBody : message.htmlStrippedBody);
}

}  // namespace vonel::bayes
