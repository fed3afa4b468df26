#pragma once
// A fresh temporary folder per test, removed afterwards, and the objects most
// tests need around it: a fixed clock, a scripted prompt and a log.
#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/log/log.h"
#include "core/time/clock.h"
#include "core/interaction/prompt.h"

namespace vonel::testing {

class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vonel-test-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
  }
  ~TempDir() {
    std::error_code ec;
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all, std::filesystem::perm_options::add, ec);
    std::filesystem::remove_all(path_, ec);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

struct TestHome {
  TempDir dir;
  FixedClock clock{text::DateTime{2026, 11, 23, 9, 30, 15}};
  ScriptedPrompt prompt;
  Log log{clock, AppInfo{"Vonel", "1.2.3", "TestOS", "/cur", dir.path()}};
};

}  // namespace vonel::testing
