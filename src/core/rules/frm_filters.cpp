#include "core/rules/frm_filters.h"

#include <cstdint>

#include "core/message/address.h"
#include "core/services/file_subs.h"
#include "core/store/suppress_message.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel::rules {

namespace {

constexpr std::string_view kModule = "frmFilters";
constexpr float kScoreWithoutFilter = 0.01f;

std::string textDigest(std::string_view text) {
  std::uint64_t hash = 14695981039346656037ull;  // FNV-1a
  for (const unsigned char c : text) hash = (hash ^ c) * 1099511628211ull;
  return std::to_string(hash);
}

void markSuspicious(message::clsMessage& m, const clsFilterNew& rule) {
  m.Colour = colour::kPurple;
  m.FilterReason = rule.FilterName;
  m.Suspicious = true;
  m.TagAsSpam();
  if (m.Subject.find("SPAM:") == std::string::npos) m.Subject = "SPAM: " + m.Subject;
}

}  // namespace

frmFilters::Lists::Lists(const std::filesystem::path& folder, cSharedLogging& log)
    : ignored(folder / "Ignore.txt", log),
      senders(folder / "Blocked.txt", log),
      domains(folder / "BlockedDomains.txt", log),
      recipients(folder / "BlockedRecip.txt", log),
      recipientDomains(folder / "BlockedRecipDomains.txt", log) {}

frmFilters::Lists& frmFilters::lists() {
  if (!lists_) lists_ = std::make_unique<Lists>(ctx_.folders.DataFolderPath, ctx_.log);
  return *lists_;
}

void frmFilters::setRules(RuleSet rules) {
  rules_ = std::move(rules);
  prepareRules();
}

void frmFilters::prepareRules() {
  prepared_.clear();
  prepared_.reserve(rules_.size());
  for (const clsFilterNew& rule : rules_) prepared_.emplace_back(rule);
}

void frmFilters::ReloadFilters(bool local) {
  ruleFile_ = ctx_.folders.DataFolderPath / (local ? "LocalRules.txt" : "Rules.txt");
  if (files::FileExists(ruleFile_)) {
    std::string text;
    if (guardedStep(ctx_.log, "LoadFilters", kModule, [&] { text = files::LoadTextFile(ruleFile_); })) {
      ReadRules(text, rules_, true, ctx_.log);
      const Value saved = ctx_.Settings.RetrieveSetting(digestKey(), Value(""));
      changedOutside_ = saved.text() != textDigest(text);
    }
  } else {
    rules_.clear();
    changedOutside_ = false;
  }
  prepareRules();
  Lists& all = lists();
  for (AddressList* list : {&all.senders, &all.domains, &all.recipientDomains, &all.recipients, &all.ignored}) {
    list->Refresh();
  }
}

bool frmFilters::saveRules(const std::filesystem::path& file, bool sharedOnly) {
  if (!rules::SaveFilters(file, rules_, sharedOnly, ctx_.log)) return false;
  if (file == ruleFile_) {
    ctx_.Settings.StoreSetting(digestKey(), Value(textDigest(RuleFileText(rules_, sharedOnly))));
    changedOutside_ = false;
  }
  return true;
}

std::string frmFilters::digestKey() const { return "RuleFileDigest_" + ruleFile_.stem().string(); }

void frmFilters::ImportFilters(const std::filesystem::path& file) {
  RuleSet imported;
  LoadFilters(imported, file, false, ctx_.log);
  MergeFilters(imported, rules_);
  prepareRules();
  SaveFilters();
}

void frmFilters::BlockSender(std::string_view address) {
  if (text::trimView(address).empty()) return;
  lists().senders.Add(std::string(address));
}

void frmFilters::BlockRecip(std::string_view address) {
  if (text::trimView(address).empty()) return;
  lists().recipients.Add(std::string(address));
}

void frmFilters::CheckMessage(message::clsMessage& m, bool useBayes) {
  try {
    std::string senderAddress = message::ExtractEmail(m.From);
    if (senderAddress.empty()) senderAddress = message::ExtractEmail(m.Sender);
    const std::string recipientAddress = message::ExtractEmail(m.To_Email());
    const std::string senderName = message::ExtractName(m.From);

    // Ahead of everything, even of the resets below.
    if (!senderName.empty() && senderName.front() == '\t') {
      m.FilterReason = "TAB in sender name";
      m.Deleted = true;
      m.Colour = colour::kRed;
      m.BlockedSender = true;
      return;
    }
    m.Colour = colour::kGreen;
    m.FilterReason.clear();
    m.Deleted = false;
    m.BlockedSender = false;
    m.BlockedRecip = false;
    m.Ignored = false;

    if (checkLists(m, senderAddress, recipientAddress) == Outcome::Decided) return;
    const bool matched = applyRules(m, useBayes);
    if (applyScore(m, useBayes) == Outcome::Decided) return;
    applySizeLimit(m, matched);
  } catch (...) {
    logFailure(ctx_.log, AppError::from(std::current_exception()), "CheckMessage", kModule);
  }
}

frmFilters::Outcome frmFilters::checkLists(message::clsMessage& m, const std::string& senderAddress,
                                           const std::string& recipientAddress) const {
  if (store::SuppressMessage(m, ctx_.Settings) || Ignore(recipientAddress)) {
    m.Colour = colour::kGrey;
    m.Ignored = true;
    return Outcome::Decided;
  }
  const auto block = [&m](std::string reason, bool bySender) {
    m.FilterReason = std::move(reason);
    m.Deleted = true;
    m.Colour = colour::kRed;
    (bySender ? m.BlockedSender : m.BlockedRecip) = true;
    return Outcome::Decided;
  };
  if (BlockedSender(senderAddress)) return block("Sender Blocked", true);
  if (BlockedDomain(senderAddress)) return block("Domain Blocked", true);
  if (BlockedRecipDomain(recipientAddress)) return block("Recip Domain Blocked", false);
  if (BlockedRecipient(recipientAddress)) return block(recipientAddress + " Blocked", false);
  return Outcome::GoOn;
}

// Rules that don't stop let later ones overwrite their results, the last
// writer winning. The first four actions turn the score off whether or not
// they stop; allow, suspicious and delete only when they stop.
bool frmFilters::applyRules(message::clsMessage& m, bool& useBayes) const {
  FoldedFields fields(m);
  bool matched = false;
  for (const PreparedRule& prepared : prepared_) {
    matched = prepared.Holds(fields);
    if (!matched) continue;
    const clsFilterNew& rule = prepared.rule();
    const double code = prepared.ActionNumber();
    bool known = true;
    if (code == 300) {
      m.DestFolder = rule.DestFolder;
      m.FilterReason = rule.FilterName;
      matched = useBayes = false;
    } else if (code == 500) {
      m.AttachmentsFolder = rule.DestFolder;
      matched = useBayes = false;
    } else if (code == 600) {
      m.RunThisFile = rule.DestFolder;
      noteRunFile(rule);
      matched = useBayes = false;
    } else if (code == 700) {
      m.setTags(rule.DestFolder);
      matched = useBayes = false;
    } else if (code == 400) {
      m.Colour = colour::kGreen;
      m.Deleted = false;
      m.FilterReason = rule.FilterName;
      matched = false;
    } else if (code == 200) {
      markSuspicious(m, rule);
      matched = false;
    } else if (code == 100) {
      m.Deleted = true;
      m.FilterReason = rule.FilterName;
      m.Colour = colour::kOrange;
    } else {
      known = false;
    }
    if (known && rule.StopProcessing) {
      useBayes = false;
      break;
    }
  }
  return matched;
}

frmFilters::Outcome frmFilters::applyScore(message::clsMessage& m, bool useBayes) const {
  if (!useBayes) {
    m.Bayes = 0;
    return Outcome::GoOn;
  }
  m.DestFolder.clear();
  float score = scorer_ ? 0.0f : kScoreWithoutFilter;
  if (scorer_) scorer_->Spamminess(m, false, score);
  m.Bayes = score;
  if (m.FilterReason.empty()) m.FilterReason = "Bayes: " + text::plainText(score);
  if (score >= ctx_.SpamThreshold) {
    m.Colour = colour::kOrange;
    if (m.HeaderOnly) {
      m.Deleted = true;
    } else {
      m.DestFolder = "\\SpamBayes\\";
    }
    return Outcome::Decided;
  }
  if (score >= ctx_.SaveToSpamThreshold) {
    m.Suspicious = true;
    m.Colour = colour::kPurple;
    m.DestFolder = "\\SpamBayes\\";
    return Outcome::Decided;
  }
  return Outcome::GoOn;
}

void frmFilters::applySizeLimit(message::clsMessage& m, bool matched) const {
  const auto limit = static_cast<float>(ctx_.Settings.RetrieveSetting("MaxMailSize", Value(0)).numberOr(0));
  if (limit > 0 && !matched && m.Size > limit) {
    m.Colour = colour::kGrey;
    m.Ignored = true;
    m.FilterReason = "Over " + text::plainText(limit) + "Kb";
  }
}

void frmFilters::noteRunFile(const clsFilterNew& rule) const {
  if (!changedOutside_) return;
  ctx_.log.AddAction("Rule \"" + rule.FilterName + "\" names \"" + rule.DestFolder +
                         "\" to run; its rule file was changed outside Vonel",
                     "CheckMessage", kModule);
}

}  // namespace vonel::rules
