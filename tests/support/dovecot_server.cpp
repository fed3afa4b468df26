#include "support/dovecot_server.h"

#include <QProcess>

#include "core/files/atomic_file.h"
#include "core/settings/scramble.h"

namespace vonel::testing {
namespace {

QString script() { return QStringLiteral(VONEL_SOURCE_DIR "/tools/pop3-server.sh"); }

}  // namespace

DovecotServer::DovecotServer(std::string user, std::string password)
    : user_(std::move(user)), password_(std::move(password)) {}

DovecotServer::~DovecotServer() { stop(); }

bool DovecotServer::start() {
  QProcess process;
  process.start("bash", {script(), "start", dir_.path() + "/dovecot", QString::fromStdString(user_),
                         QString::fromStdString(password_)});
  if (!process.waitForFinished(20000) || process.exitCode() != 0) return false;
  port_ = QString::fromUtf8(process.readAllStandardOutput()).trimmed().toInt();
  running_ = port_ > 0;
  return running_;
}

void DovecotServer::stop() {
  if (!running_) return;
  QProcess::execute("bash", {script(), "stop", dir_.path() + "/dovecot"});
  running_ = false;
}

std::filesystem::path DovecotServer::maildir() const {
  return std::filesystem::path(dir_.path().toStdString()) / "dovecot" / "mail" / user_ / "Maildir";
}

void DovecotServer::deliver(const std::string& name, const std::string& text) const {
  const auto file = maildir() / "new" / name;
  files::writeTextFile(file, text);
  std::filesystem::permissions(file, std::filesystem::perms::all);
}

int DovecotServer::messageCount() const {
  int count = 0;
  for (const char* sub : {"new", "cur"}) {
    for (const auto& entry : std::filesystem::directory_iterator(maildir() / sub)) count += entry.is_regular_file();
  }
  return count;
}

std::string DovecotServer::accountSettings(int n) const {
  const std::string number = std::to_string(n);
  return "SERVER" + number + ",127.0.0.1\r\nPOPPORT" + number + "," + std::to_string(port_) + "\r\nUNAME" + number +
         "," + user_ + "\r\nPWD" + number + "," + encrypt(password_) + "\r\n";
}

}  // namespace vonel::testing
