#include "app/single_instance.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QLocalSocket>
#include <QStandardPaths>
#include <memory>
#include <system_error>

#include "core/runner/runner_command.h"
#include "core/runner/runner_frame.h"

namespace vonel {
namespace {

QString idleSlot() { return QString::fromLatin1(runner::kIdleSlot.data(), runner::kIdleSlot.size()); }

QString qtPath(const std::filesystem::path& path) { return QString::fromStdU16String(path.u16string()); }

constexpr const char* kNoInstance = "Unable to find instance of Vonel";
constexpr const char* kNotTaken = "Vonel is running, but I couldn't set the msg name";

}  // namespace

SingleInstance::SingleInstance(const std::filesystem::path& home, QObject* parent)
    : QObject(parent), serverName_(serverNameFor(home)), lock_(qtPath(home / "vonel.lock")), slot_(idleSlot()) {
  // Only a lock whose program has died is stale, however old it is.
  lock_.setStaleLockTime(0);
  server_.setSocketOptions(QLocalServer::UserAccessOption);
  timerRunner_.setObjectName("TimerRunner");
  timerRunner_.setInterval(kPollMs);
  connect(&server_, &QLocalServer::newConnection, this, &SingleInstance::onNewConnection);
  connect(&timerRunner_, &QTimer::timeout, this, &SingleInstance::onTimerRunner);
}

QString SingleInstance::serverNameFor(const std::filesystem::path& home) {
  std::error_code error;
  std::filesystem::path canonical = std::filesystem::weakly_canonical(home, error);
  if (error) canonical = home.lexically_normal();
  // The runtime folder is the user's own, so the name need only tell homes apart;
  // a hash keeps it short enough for a socket path however long the home's path is.
  const QByteArray digest =
      QCryptographicHash::hash(qtPath(canonical).toUtf8(), QCryptographicHash::Sha256).toHex().left(16);
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
  return QDir(folder).filePath("vonel-" + QString::fromLatin1(digest));
}

bool SingleInstance::passToRunningCopy(const QString& command, Log& log) {
  if (lock_.tryLock(0)) return false;
  // A home that can't hold a lock file can't tell whether another copy runs; this one runs.
  if (lock_.error() != QLockFile::LockFailedError) return false;

  const QDeadlineTimer deadline(kHandOverMs);
  QLocalSocket socket;
  socket.connectToServer(serverName_);
  if (!socket.waitForConnected(static_cast<int>(deadline.remainingTime()))) {
    log.logEvent(kNoInstance);
    return true;
  }
  const QString sent = command.isEmpty() ? QString::fromLatin1(runner::kShowCommand.data(), runner::kShowCommand.size())
                                         : command;
  const QByteArray text = sent.toUtf8();
  const std::string frame = runner::encodeFrame(std::string_view(text.constData(), static_cast<std::size_t>(text.size())));
  bool taken = false;
  if (!frame.empty()) {
    socket.write(frame.data(), static_cast<qint64>(frame.size()));
    taken = socket.waitForBytesWritten(static_cast<int>(deadline.remainingTime())) &&
            (socket.bytesAvailable() > 0 || socket.waitForReadyRead(static_cast<int>(deadline.remainingTime()))) &&
            socket.read(1) == QByteArray(1, runner::kAccepted);
  }
  if (!taken) log.logEvent(kNotTaken);
  socket.abort();
  return true;
}

bool SingleInstance::listen() {
  // The lock is ours, so a socket left behind is a killed copy's.
  QLocalServer::removeServer(serverName_);
  const bool listening = server_.listen(serverName_);
  timerRunner_.start();
  return listening;
}

void SingleInstance::onNewConnection() {
  while (QLocalSocket* socket = server_.nextPendingConnection()) {
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    // A sender that stops halfway through its frame is dropped.
    QTimer::singleShot(kFrameTimeoutMs, socket, [socket] {
      socket->abort();
      socket->deleteLater();
    });
    auto reader = std::make_shared<runner::FrameReader>();
    connect(socket, &QLocalSocket::readyRead, this, [this, socket, reader] {
      const QByteArray bytes = socket->readAll();
      switch (reader->feed(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())))) {
        case runner::FrameState::Incomplete:
          return;
        case runner::FrameState::Invalid:
          socket->abort();
          socket->deleteLater();
          return;
        case runner::FrameState::Complete: {
          const bool idle = slot_ == idleSlot();
          if (idle) slot_ = QString::fromStdString(reader->command());
          socket->write(QByteArray(1, idle ? runner::kAccepted : runner::kBusy));
          socket->disconnectFromServer();
          return;
        }
      }
    });
  }
}

void SingleInstance::onTimerRunner() {
  if (slot_ == idleSlot()) return;
  timerRunner_.stop();
  emit commandArrived(slot_);
  slot_ = idleSlot();
  timerRunner_.start();
}

}  // namespace vonel
