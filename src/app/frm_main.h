#pragma once
// The controller: brings the program up in a fixed order, keeps the state of
// the mail cycle, and takes the program down again. Its window is a separate
// class that fills MainWindowPort.
#include <QObject>
#include <QTimer>
#include <string>

#include "app/main_window_port.h"
#include "core/services/app_context.h"

namespace vonel {

enum class StartupResult { Started, NoAccount };

class frmMain : public QObject {
  Q_OBJECT

 public:
  frmMain(AppContext& context, MainWindowPort& windows);

  StartupResult Startup();
  // False when the user chose to keep the program running.
  bool ExitProg();
  void ReadSettings();

  // State of the mail cycle that start-up and shutdown read.
  bool CheckingMail = false;
  bool SendingMail = false;
  bool AutoDelete = false;
  bool SoundOn = false;
  bool RetrieveNext = false;
  double TotalSpamCount = 0;

  QTimer TimerAutoScan;
  QTimer TimerDelayedStart;
  QTimer TimerUpdateCheck;

 private:
  void stage(std::string_view text);
  void action(std::string_view text);
  void migrateOldPaths();
  void migrateOldSignature();
  void applyWindowSize();
  std::string trayTip() const;
  bool outboxHoldsMail() const;

  AppContext& ctx_;
  MainWindowPort& windows_;
};

}  // namespace vonel
