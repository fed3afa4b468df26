#pragma once
// Mark-up conversion over whole message bodies. The procedures that take a
// `std::string&` change the text they are given.
#include <string>
#include <string_view>

namespace vonel::text {

// Deletes every "<" ... ">" span, brackets included. A "<" with no ">" after
// it is left, and so is the rest of the text behind it.
void stripTags(std::string& text);

// Drops <style> blocks (only the bare tag is recognised), then every tag.
// A text with neither "<" nor ">" is left alone.
void stripHtml(std::string& text);

// The typographic entities and numeric references the entity table lacks:
// ellipsis, bullet, primes, the common &#82xx; forms, then any decimal
// reference below 255 as its byte (others, hexadecimal ones included, are deleted).
void htmlConstToChar(std::string& text);

// Undoes the usual disguises of spam subjects ("V1.AGRA", "fr_ee"): drops
// . : ^ ' , then reads @ 1 () 0 _ as a i o o and a blank, then drops - ~ ( ) { }.
std::string cleanWord(std::string_view text);

}  // namespace vonel::text
