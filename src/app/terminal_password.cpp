#include "app/terminal_password.h"

#include <cstdio>
#include <iostream>
#include <string>

#ifndef _WIN32
#include <termios.h>
#include <unistd.h>
#endif

#include "core/text/cp1252.h"

namespace vonel {

std::string TerminalPasswordPrompt::askPassword(std::string_view, std::string_view prompt, bool& cancelled,
                                                bool& save) {
  save = false;
  cancelled = true;
#ifndef _WIN32
  if (!::isatty(STDIN_FILENO)) return {};
  std::fprintf(stderr, "%s: ", text::cp1252ToUtf8(prompt).c_str());
  termios old{};
  const bool quiet = ::tcgetattr(STDIN_FILENO, &old) == 0;
  if (quiet) {
    termios silent = old;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    ::tcsetattr(STDIN_FILENO, TCSANOW, &silent);
  }
  std::string line;
  const bool read = static_cast<bool>(std::getline(std::cin, line));
  if (quiet) ::tcsetattr(STDIN_FILENO, TCSANOW, &old);
  std::fprintf(stderr, "\n");
  cancelled = !read;
  return text::utf8ToCp1252(line);
#else
  (void)prompt;
  return {};
#endif
}

}  // namespace vonel
