#include "core/context/app_context.h"

#include "core/files/any_case.h"
#include "core/text/numbers.h"

namespace vonel {

AppContext::AppContext(const Clock& clockIn, Prompt& promptIn, AppInfo info, LocaleFacts locale)
    : clock(clockIn),
      prompt(promptIn),
      log(clockIn, std::move(info)),
      settings(log, promptIn),
      pathSettings(log, promptIn),
      folders(pathSettings, log, log.info().installFolder),
      locale_(std::move(locale)) {
  settings.setLocalBooleanWords(locale_.trueWord, locale_.falseWord);
  pathSettings.setLocalBooleanWords(locale_.trueWord, locale_.falseWord);
}

std::filesystem::path AppContext::settingsFile() const { return files::resolveAnyCase(installFolder(), "Vonel.ini"); }

std::filesystem::path AppContext::pathsFile() const { return files::resolveAnyCase(installFolder(), "Paths.ini"); }

LocaleDates& AppContext::dates() {
  if (!dates_) dates_ = std::make_unique<LocaleDates>(locale_, log, clock);
  return *dates_;
}

void AppContext::readBayesSettings() {
  spamThreshold = static_cast<float>(settings.getOrDefault("Spamminess", Value(0.99f)).numberOr(0.99));
  saveToSpamThreshold =
      static_cast<float>(settings.getOrDefault("SaveToSpamScore", Value(0.7f)).numberOr(0.7));
  headerWordCount = text::toWhole<std::int16_t>(settings.getOrDefault("HeaderWords", Value(12)).numberOr(12));
  spamWordMinimum = text::toWhole<std::int16_t>(settings.getOrDefault("SpamWordCount", Value(2)).numberOr(2));
}

double AppContext::globalSpamCount() const { return settings.get("SpamCount", Value(0)).numberOr(0); }

}  // namespace vonel
