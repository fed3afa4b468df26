#pragma once
// What the program learns from the platform at start: its home folder, the
// facts for the log's header, and the locale's date and Boolean words.
#include <QString>
#include <filesystem>
#include <memory>
#include <optional>

#include "core/log/log.h"
#include "core/locale/locale_dates.h"
#include "core/time/clock.h"

namespace vonel {

// The home holds every file the program keeps beside itself: --home DIR,
// else $VONEL_HOME, else the program's own folder when it holds Vonel.ini
// (portable use), else the user's data folder. The folder is created.
std::filesystem::path resolveHome(const std::optional<QString>& homeArgument);

AppInfo platformAppInfo(const std::filesystem::path& home);

// The program's clock: the system's, or, with VONEL_TODAY=YYYY-MM-DD, the
// system's time of day on that day, so that mail written for that day shows
// the ages it was written with. A value that is no day is ignored.
std::unique_ptr<Clock> platformClock();
LocaleFacts platformLocaleFacts();

}  // namespace vonel
