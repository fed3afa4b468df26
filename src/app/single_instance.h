#pragma once
// One copy of the program per user and home. The first copy holds a lock
// file in its home and listens on a user-only local socket; a second start
// finds the lock, hands its command over the socket and ends.
//
// The running copy keeps one text slot that reads "RUNNER" while idle. A
// command is taken only into an idle slot (a busy slot drops it, and the
// sender logs that), and TimerRunner looks at the slot once a second: so a
// command that arrives while the copy is still starting waits for the timer.
#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QString>
#include <QTimer>
#include <filesystem>

#include "core/log/log.h"

namespace vonel {

class SingleInstance : public QObject {
  Q_OBJECT

 public:
  explicit SingleInstance(const std::filesystem::path& home, QObject* parent = nullptr);

  // True when another copy runs for this user and home, whether or not it
  // took the command; a failed hand-over is a line in `log`. False when this
  // is the first copy, which then holds the lock until it is destroyed.
  // An empty command is sent as "SHOW".
  bool passToRunningCopy(const QString& command, Log& log);
  // Opens the socket and starts TimerRunner; false when the socket can't be
  // opened (the copy runs on, but can't be reached).
  bool listen();

  // The text of the slot: "RUNNER", or the command waiting in it.
  const QString& slot() const { return slot_; }
  QString serverName() const { return serverName_; }
  // The socket's path for a home: short, in the user's runtime folder.
  static QString serverNameFor(const std::filesystem::path& home);

  // Time a second copy waits for the running one, from connecting to its answer.
  static constexpr int kHandOverMs = 120;
  // Time a connection has to deliver its whole frame.
  static constexpr int kFrameTimeoutMs = 2000;
  static constexpr int kPollMs = 1000;

 signals:
  // TimerRunner found a command in the slot; once the signal returns the
  // slot reads "RUNNER" again.
  void commandArrived(const QString& command);

 private:
  void onNewConnection();
  void onTimerRunner();

  QString serverName_;
  QLockFile lock_;
  QLocalServer server_;
  QTimer timerRunner_;
  QString slot_;
};

}  // namespace vonel
