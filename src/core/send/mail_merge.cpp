#include "core/send/mail_merge.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "core/files/path_text.h"
#include "core/log/log_places.h"
#include "core/settings/accounts.h"
#include "core/store/tag_files.h"
#include "core/text/shared_text.h"
#include "core/text/strings.h"

namespace vonel::send {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kModule = log_places::kMailerModule;
constexpr std::string_view kTitle = "Vonel";
// A row whose fields hold the codes of later columns grows with each column;
// past this size it is taken as a bad row rather than filling the memory.
constexpr std::size_t kMaxMergedText = 16 * 1024 * 1024;

bool hasSubjectLine(std::string_view text) { return text::startsWithNoCase(text, "Subject:"); }

// Rows end in CR LF or in a bare LF, as editors write them; the last may have no end.
std::vector<std::string> dataRows(std::string_view data) {
  std::vector<std::string> rows = text::split(data, "\n");
  for (std::string& row : rows) {
    if (row.ends_with('\r')) row.pop_back();
  }
  return rows;
}

// A template written with bare LF line ends becomes a message with CR LF ones.
std::string withCrLfLineEnds(std::string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 32);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r')) out += '\r';
    out += text[i];
  }
  return out;
}

void tell(AppContext& context, std::string_view text) { context.prompt.ask(text, Buttons::Ok, kTitle); }

// The row's fields: surplus fields join the last header column without
// their commas; nothing when the row is short.
std::optional<std::vector<std::string>> rowFields(std::string_view row, std::size_t columns) {
  std::vector<std::string> fields = text::split(row, ",");
  if (fields.size() < columns) return std::nullopt;
  for (std::size_t surplus = columns; surplus < fields.size(); ++surplus) fields[columns - 1] += fields[surplus];
  fields.resize(columns);
  return fields;
}

// Every code, as it stands in the header, replaced in any case by its trimmed field.
std::optional<std::string> mergedText(std::string_view templateText, const std::vector<std::string>& header,
                                      const std::vector<std::string>& fields) {
  std::string text(templateText);
  for (std::size_t column = 0; column < header.size(); ++column) {
    text = text::replaceAllNoCase(text, header[column], text::trim(fields[column]));
    if (text.size() > kMaxMergedText) return std::nullopt;
  }
  return text;
}

message::Message mergedMessage(std::string text, const std::string& to, const MergeSender& sender) {
  message::Message message;
  message.fromAccount = static_cast<std::int16_t>(sender.account);
  message.from = message.sender = message.returnPath = sender.replyAddress;
  if (hasSubjectLine(text)) {
    const std::size_t lineEnd = text::find(text, "\r");
    const std::string subjectLine = lineEnd == 0 ? text : text::left(text, lineEnd - 1);
    text = lineEnd == 0 ? std::string() : text::mid(text, lineEnd);
    text::trimJunkFromStart(text);
    message.subject = text::trim(text::replaceAllNoCase(subjectLine, "subject:", ""));
  }
  message.setToEmail(to);
  message.setMessageBody(std::move(text));
  return message;
}

}  // namespace

MergeSender firstAccountSender(const SettingsStore& settings) {
  const int account = firstAccount(settings).value_or(0);
  return {account, settings.get(accountKey("REPLYADDRESS", account), Value("")).text()};
}

MergeCounts mergeTexts(std::string_view data, std::string_view templateText, const MergeSender& sender,
                       const std::function<void(message::Message&)>& spool, Progress& progress) {
  const std::vector<std::string> rows = dataRows(data);
  const std::string templateCrLf = withCrLfLineEnds(templateText);
  const std::vector<std::string> header = text::split(rows.front(), ",");
  const auto email = std::find_if(header.begin(), header.end(),
                                  [](const std::string& code) { return text::upper(text::trim(code)) == "$EMAIL"; });
  if (email == header.end()) throw NoEmailField();
  const std::size_t emailColumn = static_cast<std::size_t>(email - header.begin());

  MergeCounts counts;
  for (std::size_t row = 1; row < rows.size(); ++row) {
    const auto fields = rowFields(rows[row], header.size());
    if (!fields) continue;
    const std::string& to = (*fields)[emailColumn];
    auto text = mergedText(templateCrLf, header, *fields);
    if (text && to.find('@') != std::string::npos) {
      message::Message message = mergedMessage(std::move(*text), to, sender);
      spool(message);
      ++counts.saved;
    } else {
      ++counts.invalid;
    }
    progress.letEventsRun();
  }
  return counts;
}

bool acceptMergeFiles(AppContext& context, const fs::path& dataFile, const fs::path& templateFile) {
  if (!files::fileExists(dataFile)) {
    tell(context, "Name list file not found");
    return false;
  }
  if (!files::fileExists(templateFile)) {
    tell(context, "Email template file not found");
    return false;
  }
  bool subjectLine = false;
  guardedStep(context.log, log_places::kCmdGoClick, log_places::kMailMergeModule,
              [&] { subjectLine = hasSubjectLine(files::readFileStart(templateFile, 8)); });
  if (!subjectLine) tell(context, "Warning: The first line of your email template should be 'Subject: [subject here]'");
  context.settings.set("MergeDataFile", Value(files::textFromPath(dataFile)));
  context.settings.set("MergeTemplateFile", Value(files::textFromPath(templateFile)));
  return true;
}

MergeCounts mergeIntoOutbox(AppContext& context, MessageSpooler& spooler, Progress& progress, const fs::path& dataFile,
                        const fs::path& templateFile) {
  MergeCounts counts;
  guardedStep(context.log, log_places::kDoMailMerge, kModule, [&] {
    std::string data;
    std::string templateText;
    try {
      data = files::loadTextFile(dataFile);
      templateText = files::loadTextFile(templateFile);
    } catch (const AppError& error) {
      tell(context, "Error: " + error.description());
      throw;
    }
    if (data.empty() || templateText.empty()) {
      tell(context, "Error: One or both files are empty.");
      return;
    }
    if (!hasSubjectLine(templateText) && context.prompt.ask(kMergeNoSubject, Buttons::YesNo, kTitle) == Answer::No) {
      return;
    }
    const MergeSender sender = firstAccountSender(context.settings);
    // The merge's outbox files reach the disk together, at its end.
    context.writes.open();
    try {
      counts = mergeTexts(data, templateText, sender,
                          [&](message::Message& message) { spooler.spoolMessage(message, "", ""); }, progress);
    } catch (const NoEmailField& error) {
      context.writes.commit();
      tell(context, error.description());
      return;
    }
    try {
      context.writes.commit();
    } catch (const AppError& error) {
      tell(context, "Error: " + error.description());
      throw;
    }
    // One change of the outbox's count for the whole merge rather than one a message.
    if (counts.saved > 0) {
      store::addToUnreadTag(context.log, context.folders.outboxFolderPath, static_cast<int>(counts.saved));
    }
    tell(context, "Processed " + std::to_string(counts.saved + counts.invalid) + " name(s)\r\n" +
                      std::to_string(counts.saved) + " saved to the outbox and \r\n" +
                      std::to_string(counts.invalid) + " had invalid email address(es) (skipped)");
  });
  return counts;
}

}  // namespace vonel::send
