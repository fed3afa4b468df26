#pragma once
// A message as tokens counted in a table: "PREFIX*word" from the headers, the
// subject in three forms and the URL hosts of the body; never the body's
// words. Training and scoring share it, so a token means the same in both.
// Positions are 1-based, 0 meaning "none".
#include <cstddef>
#include <string>
#include <string_view>

#include "core/bayes/word_table.h"
#include "core/message/message.h"

namespace vonel::bayes {

void hashMessage(WordTable& table, const message::Message& message, bool headersOnly);
// The tokens of one field under one prefix.
void breakAndHash(WordTable& table, std::string text, std::string_view prefix);
// "URL*" tokens for the hosts of the links in a body.
void hashUrls(WordTable& table, std::string_view text);

// Moves `lowest` to the last character of `find` when it occurs from `start`
// and sooner than `lowest` (0 counts as later than anything).
void getLowest(std::size_t start, std::string_view text, std::string_view find, std::size_t& lowest);

std::string cleanThisWord(std::string word);
// Digits, "-" and "+" only; an empty word is numeric.
bool allNumerics(std::string_view word);
std::string cleanNumbers(std::string_view text);
std::string extractIfUrl(std::string word);

}  // namespace vonel::bayes
