#include "core/services/app_context.h"

#include "core/services/file_subs.h"
#include "core/text/numbers.h"

namespace vonel {

AppContext::AppContext(const Clock& clockIn, Prompt& promptIn, AppInfo info, LocaleFacts locale)
    : clock(clockIn),
      prompt(promptIn),
      log(clockIn, std::move(info)),
      Settings(log, promptIn),
      PathSettings(log, promptIn),
      folders(PathSettings, log, log.info().installFolder),
      locale_(std::move(locale)) {
  Settings.setLocalBooleanWords(locale_.trueWord, locale_.falseWord);
  PathSettings.setLocalBooleanWords(locale_.trueWord, locale_.falseWord);
}

std::filesystem::path AppContext::settingsFile() const { return files::ResolveAnyCase(installFolder(), "Vonel.ini"); }

std::filesystem::path AppContext::pathsFile() const { return files::ResolveAnyCase(installFolder(), "Paths.ini"); }

cSharedDateSubs& AppContext::dates() {
  if (!dates_) dates_ = std::make_unique<cSharedDateSubs>(locale_, log, clock);
  return *dates_;
}

void AppContext::ReadBayesSettings() {
  SpamThreshold = static_cast<float>(Settings.RetrieveWithDefault("Spamminess", Value(0.99f)).numberOr(0.99));
  SaveToSpamThreshold =
      static_cast<float>(Settings.RetrieveWithDefault("SaveToSpamScore", Value(0.7f)).numberOr(0.7));
  HeaderWordCount = text::toWhole<std::int16_t>(Settings.RetrieveWithDefault("HeaderWords", Value(12)).numberOr(12));
  SpamWordMinimum = text::toWhole<std::int16_t>(Settings.RetrieveWithDefault("SpamWordCount", Value(2)).numberOr(2));
}

double AppContext::GlobalSpamCount() const { return Settings.RetrieveSetting("SpamCount", Value(0)).numberOr(0); }

}  // namespace vonel
