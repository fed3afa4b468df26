#pragma once
// Texts shown on one line of the status bar or of the server list.
#include <string>

namespace vonel {

// An error text without its line ends.
std::string withoutLineEnds(std::string text);

}  // namespace vonel
