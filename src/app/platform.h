#pragma once
// What the program learns from the platform at start: its home folder, the
// facts for the log's header, and the locale's date and Boolean words.
#include <QString>
#include <filesystem>
#include <optional>

#include "core/log/log.h"
#include "core/locale/locale_dates.h"

namespace vonel {

// The home holds every file the program keeps beside itself: --home DIR,
// else $VONEL_HOME, else the program's own folder when it holds Vonel.ini
// (portable use), else the user's data folder. The folder is created.
std::filesystem::path resolveHome(const std::optional<QString>& homeArgument);

AppInfo platformAppInfo(const std::filesystem::path& home);
LocaleFacts platformLocaleFacts();

}  // namespace vonel
