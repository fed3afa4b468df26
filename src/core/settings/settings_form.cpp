#include "core/settings/settings_form.h"

#include "core/files/atomic_file.h"
#include "core/files/file_text.h"

#include <algorithm>

#include "core/files/file_info.h"
#include "core/files/path_text.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"

namespace vonel {
namespace {

constexpr char kSeparator = static_cast<char>(std::filesystem::path::preferred_separator);

std::string folderText(const std::filesystem::path& folder) { return files::textFromPath(folder); }

// Check boxes are kept as the numbers 0 and 1.
Value boxState(bool ticked) { return Value(ticked ? 1 : 0); }

Account storableAccount(Account account) {
  for (std::string* field : {&account.title, &account.server, &account.userName, &account.password, &account.smtp,
                             &account.smtpUserName, &account.smtpPassword, &account.replyAddress,
                             &account.displayName, &account.exclusive0, &account.exclusive1}) {
    *field = storableText(*field);
  }
  return account;
}

void writeAccountBoxes(SettingsStore& settings, const Account& account) {
  writeAccount(settings, storableAccount(account));
  // The same keys again, in place: the dialog keeps its boxes as 0 and 1.
  settings.set(accountKey("CHECK", account.index), boxState(account.check));
  settings.set(accountKey("STOPATLAST", account.index), boxState(account.stopAtLast));
  settings.set(accountKey("SMTPAuth", account.index), boxState(account.smtpAuth));
}

}  // namespace

std::string storableText(std::string_view text) {
  std::string kept;
  kept.reserve(text.size());
  std::copy_if(text.begin(), text.end(), std::back_inserter(kept),
               [](char c) { return c != '\r' && c != '\n' && c != '\0'; });
  return kept;
}

std::string withoutTrailingSeparator(std::string path) {
  // A lone separator is the root folder, and stays.
  if (path.size() > 1 && (path.back() == '\\' || path.back() == '/')) path.pop_back();
  return path;
}

bool folderUsable(const std::filesystem::path& folder) {
  return !folder.empty() && (files::folderExists(folder) || files::ensureFolder(folder));
}

std::string defaultSignature(const std::filesystem::path& storeRoot) {
  const auto file = storeRoot / "sig.txt";
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return {};
  try {
    return files::loadTextFile(file);
  } catch (...) {
    return {};
  }
}

SettingsForm readSettingsForm(const SettingsStore& settings, const DataFolders& folders) {
  auto text = [&](std::string_view key, std::string_view fallback) {
    return settings.get(key, Value(fallback)).text();
  };
  auto number = [&](std::string_view key, std::string_view fallback) { return text::trim(text(key, fallback)); };
  auto flag = [&](std::string_view key, bool fallback) { return settings.get(key, Value(fallback)).flag(); };

  SettingsForm form;
  for (int n = 0; n < kAccountCount; ++n) {
    form.accounts[static_cast<std::size_t>(n)] = readAccount(settings, n, AccountReader::Dialog);
  }
  const auto& root = folders.messageFolderPath;
  form.language = text("langID", "English");
  form.messageStore = folderText(root);
  form.dataFolder = folderText(folders.dataFolderPath);
  form.filterFolder = folderText(folders.filterFolderPath);
  form.spamFolder = text("SpamFolder", folderText(root / "SpamBayes"));
  form.signature = defaultSignature(root);

  form.autoUpdateCheck = !flag("DisableAutoUpdateCheck", false);
  form.scanOnStartup = flag("ScanOnStart", true);
  form.retrieveOnStartup = flag("RetrieveOnStart", false);
  form.disableReadFromServer = flag("DisableReadOnServer", false);
  form.autoDelete = flag("AUTODELETE", false);
  form.audio = flag("AUDIO", false);
  form.startMinimised = flag("STARTMIN", false);
  form.deleteOnRetrieve = flag("DELETEONRETRIEVE", false);
  form.showScannerFirst = flag("ShowScannerFirst", true);

  form.seconds = number("DELAY", "0");
  form.maxSize = number("MaxMailSize", "0");
  form.timeout = number("MailTimeout", "30");
  form.ages = {number("Age0", "30"), number("Age1", "14"), number("Age2", "1")};

  form.bounceSubject = text("BOUNCESUBJECT", "Failure Notice");
  form.bouncePrefix = text("BOUNCEPREFIX", "MAILER-DAEMON@");
  form.fontSize = number("FontSize", "8");
  form.messageFontSize = number("MsgFontSize", "");
  form.fontName = text("NewFontName", "Arial");
  return form;
}

FormReview reviewSettingsForm(SettingsForm& form, const DataFolders& present, const FolderTest& usable) {
  FormReview review;
  auto refuse = [&](std::string text) {
    review.refusal = std::move(text);
    return review;
  };

  const std::string& reply = form.accounts[static_cast<std::size_t>(form.shownAccount)].replyAddress;
  if (!reply.empty() && reply.find('@') == std::string::npos) {
    return refuse("Please enter a valid email for the reply address");
  }
  const double ages[] = {text::val(form.ages[0]), text::val(form.ages[1]), text::val(form.ages[2])};
  if (std::ranges::any_of(ages, [](double age) { return age <= 0; })) {
    return refuse("Message ages cannot be zero or less");
  }
  if (ages[0] < ages[1]) return refuse("Age 1 is less than Age 2");
  if (ages[1] < ages[2]) return refuse("Age 2 is less than Age 3");
  const double timeout = text::val(form.timeout);
  if (timeout < 0 || timeout > 999) return refuse("Timeout must be 0 to 999 seconds");
  if (text::trimView(form.maxSize).empty()) form.maxSize.assign(1, '0');

  if (form.messageStore.empty()) return refuse("Please specify a message store location.");
  form.messageStore = withoutTrailingSeparator(form.messageStore);
  if (!usable(files::pathFromText(form.messageStore))) {
    return refuse("Please specify a valid path to your message store folder");
  }

  if (!usable(files::pathFromText(form.spamFolder))) {
    const std::string archive = folderText(files::pathFromText(form.messageStore) / "SpamBayes");
    review.notices.push_back("Invalid spam archive path. Resetting to " + archive + kSeparator);
    form.spamFolder = archive;
  }
  if (!usable(files::pathFromText(form.filterFolder))) {
    form.filterFolder = folderText(present.filterFolderPath);
    review.notices.push_back("Invalid filters path. Resetting to " + form.filterFolder);
  }
  if (!usable(files::pathFromText(form.dataFolder))) {
    form.dataFolder = folderText(present.dataFolderPath);
    review.notices.push_back("Invalid data path. Resetting to " + form.dataFolder);
  }
  return review;
}

void writeSettingsForm(const SettingsForm& form, SettingsStore& settings, DataFolders& folders) {
  folders.setMessageFolder(files::pathFromText(storableText(form.messageStore)));
  folders.setDataFolder(files::pathFromText(withoutTrailingSeparator(storableText(form.dataFolder))));
  folders.setFilterFolder(files::pathFromText(withoutTrailingSeparator(storableText(form.filterFolder))));
  settings.set("SpamFolder", Value(storableText(form.spamFolder)));

  for (const Account& account : form.accounts) writeAccountBoxes(settings, account);
  // Written only when it changed, so an untouched dialog makes no empty file.
  if (form.signature != defaultSignature(folders.messageFolderPath)) {
    files::writeTextFile(folders.messageFolderPath / "sig.txt", form.signature);
  }

  auto text = [&](std::string_view key, const std::string& value) { settings.set(key, Value(storableText(value))); };
  settings.set("DisableAutoUpdateCheck", boxState(!form.autoUpdateCheck));
  settings.set("ScanOnStart", boxState(form.scanOnStartup));
  settings.set("RetrieveOnStart", boxState(form.retrieveOnStartup));
  settings.set("DisableReadOnServer", boxState(form.disableReadFromServer));
  text("DELAY", form.seconds);
  settings.set("AUTODELETE", boxState(form.autoDelete));
  settings.set("AUDIO", boxState(form.audio));
  // The one box kept as text: start-up compares it with "1" as text.
  settings.set("STARTMIN", Value(form.startMinimised ? "1" : "0"));
  settings.set("DELETEONRETRIEVE", boxState(form.deleteOnRetrieve));
  text("BOUNCESUBJECT", form.bounceSubject);
  text("BOUNCEPREFIX", form.bouncePrefix);
  text("MaxMailSize", form.maxSize);
  settings.set("ShowScannerFirst", Value(form.showScannerFirst));
  text("MailTimeout", form.timeout);
  text("Age0", form.ages[0]);
  text("Age1", form.ages[1]);
  text("Age2", form.ages[2]);
  text("FontSize", form.fontSize);
  text("MsgFontSize", form.messageFontSize);
  text("NewFontName", form.fontName);
}

}  // namespace vonel
