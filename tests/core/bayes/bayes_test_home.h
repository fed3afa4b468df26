#pragma once
// A fresh temporary home with a log, for the Bayes tests that touch files.
#include <filesystem>
#include <string>

#include "core/log/logging.h"
#include "core/services/clock.h"

namespace vonel::bayes::testing {

class TestHome {
 public:
  TestHome();
  ~TestHome();
  TestHome(const TestHome&) = delete;
  TestHome& operator=(const TestHome&) = delete;

  const std::filesystem::path& folder() const { return folder_; }
  std::filesystem::path file(const std::string& name) const { return folder_ / name; }
  void write(const std::string& name, const std::string& bytes) const;
  std::string read(const std::string& name) const;

  FixedClock clock{text::DateTime{2024, 1, 2, 3, 4, 5}};
  cSharedLogging log;

 private:
  std::filesystem::path folder_;
};

}  // namespace vonel::bayes::testing
