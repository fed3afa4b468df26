#pragma once
// String helpers over Windows-1252 bytes. Positions are 1-based, as in every
// documented algorithm of the program, and 0 means "not found"; the
// translation to C++ offsets lives here and nowhere else.
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vonel::text {

// Case of one Windows-1252 byte: ASCII and the Latin letters of the code page.
char upperByte(char c);
char lowerByte(char c);
std::string upper(std::string_view s);
std::string lower(std::string_view s);
bool equalsNoCase(std::string_view a, std::string_view b);

// Blanks only, never tabs or line ends: the rule check spots a sender name
// that starts with a TAB, which trimming must leave in place.
std::string_view trimView(std::string_view s);
std::string trim(std::string_view s);
std::string trimLeft(std::string_view s);
std::string trimRight(std::string_view s);

// Position (1-based) of `needle` in `haystack` at or after `start`; 0 if absent.
// An empty needle is found at `start` when start is within the text.
std::size_t find(std::string_view haystack, std::string_view needle, std::size_t start = 1);
std::size_t findNoCase(std::string_view haystack, std::string_view needle, std::size_t start = 1);
// Last position of `needle` that starts at or before `start` (default: anywhere).
std::size_t findLast(std::string_view haystack, std::string_view needle, std::size_t start = std::string_view::npos);

// Characters `start` (1-based) onwards, at most `length` of them.
std::string mid(std::string_view s, std::size_t start, std::size_t length = std::string_view::npos);
std::string left(std::string_view s, std::size_t length);
std::string right(std::string_view s, std::size_t length);

// Every occurrence replaced, without rescanning what was inserted.
std::string replaceAll(std::string_view s, std::string_view find, std::string_view with);
std::string replaceAllNoCase(std::string_view s, std::string_view find, std::string_view with);
// The same on a text in place, for whole message bodies: most calls find
// nothing and then cost no copy.
void replaceAllInPlace(std::string& text, std::string_view find, std::string_view with);
void replaceAllNoCaseInPlace(std::string& text, std::string_view find, std::string_view with);

// Pieces between separators; an empty text gives one empty piece.
std::vector<std::string> split(std::string_view s, std::string_view separator);

bool startsWithNoCase(std::string_view s, std::string_view prefix);

// Takes the next line off the front of `rest`, without its LF or CR LF; a
// last line needs no end. Lines end at LF only, so a lone CR stays in the line.
std::string_view nextLine(std::string_view& rest);

}  // namespace vonel::text
