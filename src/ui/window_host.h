#pragma once
// The windows and commands that other parts of the program bring: each is a
// hook that stays empty until its window exists, and the controls that lead
// to an empty hook are disabled.
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "core/message/mailto_link.h"
#include "core/message/message.h"

namespace vonel {

struct WindowHost {
  std::function<void()> openMailer;
  std::function<void(const message::ComposeRequest&)> openComposer;
  // A saved message file, shown as a message.
  std::function<void(const std::filesystem::path&)> openMessageFile;
  std::function<void()> openBayesWindow;
  std::function<void()> openContacts;
  std::function<void()> openTickets;
  std::function<void()> openLocalRules;
  std::function<void()> openServerRules;
  std::function<void()> checkForUpdate;
  std::function<void(const std::string& ruleName)> editRule;
  std::function<void(const message::Message&)> createRuleFrom;
  std::function<void(const message::Message&)> readMessage;
  std::function<void(const message::Message&)> bounce;
  // Marks the messages of the given keys as junk or as good mail.
  std::function<void(const std::vector<std::string>& keys, bool junk)> markJunk;
  // Teaches the filter from every row of the list, as its colour says.
  std::function<void()> reinforce;
};

}  // namespace vonel
