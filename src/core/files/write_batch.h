#pragma once
// Group commit for the atomic writers. While a batch is open, a file written
// through it is renamed into place without waiting for the disk, and the
// batch remembers it; commit() is the one barrier that makes every such file
// and the folders that hold them durable, called right before the step that
// makes the batch irrevocable (the QUIT that carries out a session's DELEs,
// the end of a command). A closed batch lets each write wait for the disk
// itself, as a lone save should.
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace vonel::files {

namespace fs = std::filesystem;

class WriteBatch {
 public:
  // Brings the files (in the order of their last write) and then the
  // folders to the disk; throws AppError when it can't. Tests hand in one
  // that fails, as a full or broken disk would.
  using Barrier = std::function<void(const std::vector<fs::path>& files, const std::vector<fs::path>& folders)>;

  WriteBatch();
  explicit WriteBatch(Barrier barrier);

  // From here until commit(), writes through the batch are deferred.
  void open() { open_ = true; }
  bool isOpen() const { return open_; }

  // A file renamed into place; its folder is synced with it.
  void addFile(const fs::path& file);
  // A folder whose entries changed (a file erased or moved away); a closed
  // batch leaves it to the system, as a lone erase does.
  void addFolder(const fs::path& folder);
  std::size_t pendingCount() const { return pending_.size(); }

  // The barrier; afterwards the batch is empty and closed, whether it held
  // or threw AppError.
  void commit();

 private:
  void add(const fs::path& path, bool folder);

  struct Pending {
    fs::path path;
    bool folder = false;
    std::uint64_t order = 0;  // of the latest write, so a file rewritten late is synced late
  };
  Barrier barrier_;
  std::unordered_map<std::string, Pending> pending_;
  std::uint64_t nextOrder_ = 0;
  bool open_ = false;
};

// The platform's barrier: on Linux one syncfs for each file system the
// folders lie on (a file's folder is always among them), elsewhere an fsync
// of each file and folder. Paths gone since they were written are passed over.
void syncToDisk(const std::vector<fs::path>& files, const std::vector<fs::path>& folders);

}  // namespace vonel::files
