#include "bayes_test_home.h"

#include <atomic>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace vonel::bayes::testing {
namespace {

std::filesystem::path freshFolder() {
  static std::atomic<int> counter{0};
  auto folder = std::filesystem::temp_directory_path() /
                ("vonel-bayes-" + std::to_string(::getpid()) + "-" + std::to_string(++counter));
  std::filesystem::create_directories(folder);
  return folder;
}

}  // namespace

TestHome::TestHome() : log(clock, AppInfo{}), folder_(freshFolder()) { log.OverrideLogFilename(folder_ / "log.txt"); }

TestHome::~TestHome() {
  log.WriteActionsToLog();
  std::error_code ignored;
  std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, std::filesystem::perm_options::add, ignored);
  std::filesystem::remove_all(folder_, ignored);
}

void TestHome::write(const std::string& name, const std::string& bytes) const {
  std::ofstream(file(name), std::ios::binary) << bytes;
}

std::string TestHome::read(const std::string& name) const {
  std::ifstream in(file(name), std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace vonel::bayes::testing
