#include "core/rules/rule_engine.h"

#include <cstdint>

#include "core/log/log_places.h"
#include "core/message/address.h"
#include "core/store/suppress_message.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::rules {

namespace {

constexpr std::string_view kModule = log_places::kRulesModule;
constexpr float kScoreWithoutFilter = 0.01f;

std::string textDigest(std::string_view text) {
  std::uint64_t hash = 14695981039346656037ull;  // FNV-1a
  for (const unsigned char c : text) hash = (hash ^ c) * 1099511628211ull;
  return std::to_string(hash);
}

void markSuspicious(message::Message& m, const FilterRule& rule) {
  m.colour = colour::kPurple;
  m.filterReason = rule.filterName;
  m.suspicious = true;
  m.tagAsSpam();
  if (m.subject.find("SPAM:") == std::string::npos) m.subject = "SPAM: " + m.subject;
}

}  // namespace

RuleEngine::Lists::Lists(const std::filesystem::path& folder, Log& log, Prompt& prompt)
    : ignored(folder / "Ignore.txt", log, prompt),
      senders(folder / "Blocked.txt", log, prompt),
      domains(folder / "BlockedDomains.txt", log, prompt),
      recipients(folder / "BlockedRecip.txt", log, prompt),
      recipientDomains(folder / "BlockedRecipDomains.txt", log, prompt) {}

RuleEngine::Lists& RuleEngine::lists() {
  if (!lists_) lists_ = std::make_unique<Lists>(ctx_.folders.dataFolderPath, ctx_.log, ctx_.prompt);
  return *lists_;
}

void RuleEngine::setRules(RuleSet rules) {
  rules_ = std::move(rules);
  prepareRules();
}

void RuleEngine::prepareRules() {
  prepared_.clear();
  prepared_.reserve(rules_.size());
  for (const FilterRule& rule : rules_) prepared_.emplace_back(rule);
}

void RuleEngine::reloadFilters(bool local) {
  ruleFile_ = ctx_.folders.dataFolderPath / (local ? "LocalRules.txt" : "Rules.txt");
  rules_.clear();
  keptLines_.clear();
  changedOutside_ = false;
  if (const std::optional<std::string> text = ruleSource_.read(ruleFile_)) {
    readRules(*text, rules_, true, ctx_.log, &keptLines_);
    const Value saved = ctx_.settings.get(digestKey(), Value(""));
    changedOutside_ = saved.text() != textDigest(*text);
  }
  prepareRules();
  Lists& all = lists();
  for (AddressList* list : {&all.senders, &all.domains, &all.recipientDomains, &all.recipients, &all.ignored}) {
    list->refresh();
  }
}

// Lines of the rule file that held no rule go back into it, not into other files.
bool RuleEngine::saveRules(const std::filesystem::path& file, bool sharedOnly) {
  const bool ownFile = file == ruleFile_;
  if (ownFile && !ruleSource_.mayReplace(file)) return false;
  const files::KeptLines* kept = ownFile ? &keptLines_ : nullptr;
  if (!rules::saveFilters(file, rules_, sharedOnly, ctx_.log, kept)) return false;
  if (ownFile) {
    ctx_.settings.set(digestKey(), Value(textDigest(ruleFileText(rules_, sharedOnly, kept))));
    changedOutside_ = false;
  }
  return true;
}

std::string RuleEngine::digestKey() const { return "RuleFileDigest_" + ruleFile_.stem().string(); }

void RuleEngine::importFilters(const std::filesystem::path& file) {
  RuleSet imported;
  loadFilters(imported, file, false, ctx_.log);
  mergeFilters(imported, rules_);
  prepareRules();
  saveFilters();
}

void RuleEngine::blockSender(std::string_view address) {
  if (text::trimView(address).empty()) return;
  lists().senders.add(std::string(address));
}

void RuleEngine::blockRecipient(std::string_view address) {
  if (text::trimView(address).empty()) return;
  lists().recipients.add(std::string(address));
}

void RuleEngine::checkMessage(message::Message& m, bool useBayes) {
  try {
    std::string senderAddress = message::extractEmail(m.from);
    if (senderAddress.empty()) senderAddress = message::extractEmail(m.sender);
    const std::string recipientAddress = message::extractEmail(m.toEmail());
    const std::string senderName = message::extractName(m.from);

    // Ahead of everything, even of the resets below.
    if (!senderName.empty() && senderName.front() == '\t') {
      m.filterReason = "TAB in sender name";
      m.deleted = true;
      m.colour = colour::kRed;
      m.blockedSender = true;
      return;
    }
    m.colour = colour::kGreen;
    m.filterReason.clear();
    m.deleted = false;
    m.blockedSender = false;
    m.blockedRecip = false;
    m.ignored = false;

    if (checkLists(m, senderAddress, recipientAddress) == Outcome::Decided) return;
    const bool matched = applyRules(m, useBayes);
    if (applyScore(m, useBayes) == Outcome::Decided) return;
    applySizeLimit(m, matched);
  } catch (...) {
    logFailure(ctx_.log, AppError::from(std::current_exception()), log_places::kCheckMessage, kModule);
  }
}

RuleEngine::Outcome RuleEngine::checkLists(message::Message& m, const std::string& senderAddress,
                                           const std::string& recipientAddress) const {
  if (store::suppressMessage(m, ctx_.settings) || ignore(recipientAddress)) {
    m.colour = colour::kGrey;
    m.ignored = true;
    return Outcome::Decided;
  }
  const auto block = [&m](std::string reason, bool bySender) {
    m.filterReason = std::move(reason);
    m.deleted = true;
    m.colour = colour::kRed;
    (bySender ? m.blockedSender : m.blockedRecip) = true;
    return Outcome::Decided;
  };
  if (blockedSender(senderAddress)) return block("Sender Blocked", true);
  if (blockedDomain(senderAddress)) return block("Domain Blocked", true);
  if (blockedRecipientDomain(recipientAddress)) return block("Recip Domain Blocked", false);
  if (blockedRecipient(recipientAddress)) return block(recipientAddress + " Blocked", false);
  return Outcome::GoOn;
}

// Rules that don't stop let later ones overwrite their results, the last
// writer winning. The first four actions turn the score off whether or not
// they stop; allow, suspicious and delete only when they stop.
bool RuleEngine::applyRules(message::Message& m, bool& useBayes) const {
  FoldedFields fields(m);
  bool matched = false;
  for (const PreparedRule& prepared : prepared_) {
    matched = prepared.holds(fields);
    if (!matched) continue;
    const FilterRule& rule = prepared.rule();
    bool known = true;
    switch (prepared.action()) {
      case RuleAction::MoveToFolder:
        m.destFolder = rule.destFolder;
        m.filterReason = rule.filterName;
        matched = useBayes = false;
        break;
      case RuleAction::SaveAttachments:
        m.attachmentsFolder = rule.destFolder;
        matched = useBayes = false;
        break;
      case RuleAction::RunFile:
        m.runThisFile = rule.destFolder;
        noteRunFile(rule);
        matched = useBayes = false;
        break;
      case RuleAction::Tag:
        m.setTags(rule.destFolder);
        matched = useBayes = false;
        break;
      case RuleAction::Allow:
        m.colour = colour::kGreen;
        m.deleted = false;
        m.filterReason = rule.filterName;
        matched = false;
        break;
      case RuleAction::Suspicious:
        markSuspicious(m, rule);
        matched = false;
        break;
      case RuleAction::Delete:
        m.deleted = true;
        m.filterReason = rule.filterName;
        m.colour = colour::kOrange;
        break;
      case RuleAction::Unknown:
        known = false;
        break;
    }
    if (known && rule.stopProcessing) {
      useBayes = false;
      break;
    }
  }
  return matched;
}

RuleEngine::Outcome RuleEngine::applyScore(message::Message& m, bool useBayes) const {
  if (!useBayes) {
    m.bayes = 0;
    return Outcome::GoOn;
  }
  m.destFolder.clear();
  float score = scorer_ ? 0.0f : kScoreWithoutFilter;
  if (scorer_) scorer_->spamminess(m, false, score);
  m.bayes = score;
  if (m.filterReason.empty()) m.filterReason = "Bayes: " + text::plainText(score);
  if (score >= ctx_.spamThreshold) {
    m.colour = colour::kOrange;
    if (m.headerOnly) {
      m.deleted = true;
    } else {
      m.destFolder = "\\SpamBayes\\";
    }
    return Outcome::Decided;
  }
  if (score >= ctx_.saveToSpamThreshold) {
    m.suspicious = true;
    m.colour = colour::kPurple;
    m.destFolder = "\\SpamBayes\\";
    return Outcome::Decided;
  }
  return Outcome::GoOn;
}

void RuleEngine::applySizeLimit(message::Message& m, bool matched) const {
  const auto limit = static_cast<float>(ctx_.settings.get("MaxMailSize", Value(0)).numberOr(0));
  if (limit > 0 && !matched && m.size > limit) {
    m.colour = colour::kGrey;
    m.ignored = true;
    m.filterReason = "Over " + text::plainText(limit) + "Kb";
  }
}

void RuleEngine::noteRunFile(const FilterRule& rule) const {
  if (!changedOutside_) return;
  ctx_.log.addAction("Rule \"" + rule.filterName + "\" names \"" + rule.destFolder +
                         "\" to run; its rule file was changed outside Vonel",
                     log_places::kCheckMessage, kModule);
}

}  // namespace vonel::rules
