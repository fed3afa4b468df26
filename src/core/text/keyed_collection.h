#pragma once
// A collection reached by position and by a key that ignores case, keeping
// the order in which entries were added.
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/text/strings.h"

namespace vonel::text {

template <typename T>
class KeyedCollection {
 public:
  struct Entry {
    std::string key;
    T value;
  };

  std::size_t size() const { return entries_.size(); }
  void reserve(std::size_t count) {
    entries_.reserve(count);
    index_.reserve(count);
  }
  bool empty() const { return entries_.empty(); }

  bool contains(std::string_view key) const { return index_.count(upper(key)) != 0; }

  T* find(std::string_view key) {
    const auto it = index_.find(upper(key));
    return it == index_.end() ? nullptr : &entries_[it->second].value;
  }
  const T* find(std::string_view key) const { return const_cast<KeyedCollection*>(this)->find(key); }

  // Position (0-based) of the key, or npos.
  std::size_t indexOf(std::string_view key) const {
    const auto it = index_.find(upper(key));
    return it == index_.end() ? std::string_view::npos : it->second;
  }

  // Appends; a key that is already present is left alone and false returned.
  bool add(std::string key, T value) { return emplace(std::move(key), std::move(value)).second; }

  // Appends unless the key is present; either way gives the entry's value
  // and whether it was added, with one look-up.
  std::pair<T*, bool> emplace(std::string key, T value) {
    auto [it, inserted] = index_.emplace(upper(key), entries_.size());
    if (!inserted) return {&entries_[it->second].value, false};
    entries_.push_back(Entry{std::move(key), std::move(value)});
    return {&entries_.back().value, true};
  }

  bool remove(std::string_view key) {
    const std::size_t at = indexOf(key);
    if (at == std::string_view::npos) return false;
    removeAt(at);
    return true;
  }

  void removeAt(std::size_t position) {
    index_.erase(upper(entries_[position].key));
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(position));
    for (auto& [folded, at] : index_) {
      if (at > position) --at;
    }
  }

  // Removes every entry whose value passes the test, in one pass.
  template <typename Test>
  void removeIf(Test test) {
    if (std::erase_if(entries_, [&](const Entry& entry) { return test(entry.value); }) == 0) return;
    index_.clear();
    for (std::size_t at = 0; at < entries_.size(); ++at) index_.emplace(upper(entries_[at].key), at);
  }

  void clear() {
    entries_.clear();
    index_.clear();
  }

  Entry& at(std::size_t position) { return entries_.at(position); }
  const Entry& at(std::size_t position) const { return entries_.at(position); }

  auto begin() { return entries_.begin(); }
  auto end() { return entries_.end(); }
  auto begin() const { return entries_.begin(); }
  auto end() const { return entries_.end(); }

 private:
  std::vector<Entry> entries_;
  std::unordered_map<std::string, std::size_t> index_;
};

}  // namespace vonel::text
