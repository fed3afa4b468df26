#include "app/platform.h"

#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QLocale>
#include <QStandardPaths>
#include <QSysInfo>

#include "app/qtext.h"
#include "core/files/any_case.h"
#include "core/files/file_info.h"

namespace vonel {
namespace {

std::filesystem::path toPath(const QString& folder) {
  return std::filesystem::path(QDir::cleanPath(QDir(folder).absolutePath()).toStdU16String());
}

}  // namespace

std::filesystem::path resolveHome(const std::optional<QString>& homeArgument) {
  std::filesystem::path home;
  const QString fromEnvironment = qEnvironmentVariable("VONEL_HOME");
  const QString programFolder = QCoreApplication::applicationDirPath();
  if (homeArgument && !homeArgument->isEmpty()) {
    home = toPath(*homeArgument);
  } else if (!fromEnvironment.isEmpty()) {
    home = toPath(fromEnvironment);
  } else if (files::findAnyCase(toPath(programFolder), "Vonel.ini")) {
    home = toPath(programFolder);
  } else {
    home = toPath(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
  }
  files::ensureFolder(home);
  return home;
}

AppInfo platformAppInfo(const std::filesystem::path& home) {
  AppInfo info;
  info.title = "Vonel";
  info.version = VONEL_VERSION;
  info.operatingSystem = fromQString(QSysInfo::prettyProductName());
  info.currentFolder = toPath(QDir::currentPath());
  info.installFolder = home;
  return info;
}

std::unique_ptr<Clock> platformClock() {
  const QDate today = QDate::fromString(qEnvironmentVariable("VONEL_TODAY"), "yyyy-MM-dd");
  if (!today.isValid()) return std::make_unique<SystemClock>();
  return std::make_unique<ShiftedClock>(QDate::currentDate().daysTo(today));
}

LocaleFacts platformLocaleFacts() {
  const QLocale locale = QLocale::system();
  LocaleFacts facts;
  facts.shortDateProbe = fromQString(locale.toString(QDate(2001, 12, 25), QLocale::ShortFormat));
  for (int month = 1; month <= 12; ++month) {
    facts.shortMonthNames[static_cast<std::size_t>(month - 1)] =
        fromQString(locale.monthName(month, QLocale::ShortFormat));
  }
  facts.decimalMark = fromQString(locale.decimalPoint());
  // Qt has no localised words for the Boolean values; the English words are read anyway.
  return facts;
}

}  // namespace vonel
