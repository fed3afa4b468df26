#pragma once
// One of the plain address lists the check consults (blocked senders,
// ignored recipients, ...): a file of one entry a line, held in memory with
// the entry as its own case-blind key, and read again only when the file's
// time has changed since the last read. Lines that are no entries stay in
// place when the file is written again.
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "core/files/edited_file.h"
#include "core/files/kept_lines.h"
#include "core/interaction/prompt.h"
#include "core/log/log.h"
#include "core/text/keyed_collection.h"

namespace vonel::rules {

// The part of an address after the first "@" of its e-mail address,
// trimmed; an address with no "@" is taken whole, as given.
std::string domainOf(std::string_view address);

class AddressList {
 public:
  AddressList(std::filesystem::path file, Log& log, Prompt& prompt)
      : file_(std::move(file)), log_(log), source_(log, prompt) {}

  // Reads the file again when its time differs from the last read.
  void refresh();
  // Never touches the disk.
  bool contains(std::string_view entry) const { return entries_.contains(entry); }
  // Each brings the list up to date first and writes the file after.
  void add(std::string entry);
  void remove(std::string_view entry);

  std::size_t size() const { return entries_.size(); }
  const std::filesystem::path& file() const { return file_; }

 private:
  void load();
  void save();

  std::filesystem::path file_;
  Log& log_;
  text::KeyedCollection<bool> entries_;
  files::KeptLines keptLines_;
  files::EditedFile source_;
  std::optional<std::filesystem::file_time_type> stamp_;
  bool stamped_ = false;  // a missing file has no time, which is itself a stamp
};

}  // namespace vonel::rules
