#pragma once
// Texts shown on one line of the status bar, the server list or the output.
#include <string>

namespace vonel {

// An error text without its line ends.
std::string withoutLineEnds(std::string text);

// Tabs and line ends become blanks, so that a field stays in its column.
std::string blanksForBreaks(std::string text);

}  // namespace vonel
