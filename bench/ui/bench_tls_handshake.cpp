// One TLS handshake on loopback as an account's connection makes it: the
// program's TLS settings and certificate check against a server in the same
// process holding a certificate of the test authority. Prints the median and
// the slowest of many handshakes.
// Usage: bench_tls_handshake CERTIFICATE-FOLDER   (made by tools/test-certificates.sh)
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslSocket>
#include <QTcpServer>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "app/secure_channel.h"

using namespace vonel;

namespace {

constexpr int kRuns = 50;

class Server : public QTcpServer {
 public:
  Server(const QString& folder)
      : certificate_(QSslCertificate::fromPath(folder + "/trusted.pem").value(0)) {
    QFile file(folder + "/trusted.key");
    file.open(QIODevice::ReadOnly);
    key_ = QSslKey(&file, QSsl::Ec);
    listen(QHostAddress::LocalHost);
  }

 protected:
  void incomingConnection(qintptr handle) override {
    auto* socket = new QSslSocket(this);
    socket->setSocketDescriptor(handle);
    socket->setLocalCertificate(certificate_);
    socket->setPrivateKey(key_);
    connect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
    socket->startServerEncryption();
  }

 private:
  QSslCertificate certificate_;
  QSslKey key_;
};

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  if (argc < 2) {
    std::fprintf(stderr, "usage: bench_tls_handshake CERTIFICATE-FOLDER\n");
    return 2;
  }
  const QString folder = argv[1];
  qputenv("VONEL_EXTRA_CA", (folder + "/ca.pem").toUtf8());
  Server server(folder);
  std::vector<double> times;
  for (int run = 0; run < kRuns; ++run) {
    QSslSocket client;
    client.setSslConfiguration(secureConfiguration());
    QEventLoop loop;
    bool ok = false;
    QObject::connect(&client, &QSslSocket::encrypted, &loop, [&] { ok = true; loop.quit(); });
    QObject::connect(&client, &QSslSocket::errorOccurred, &loop, &QEventLoop::quit);
    QElapsedTimer timer;
    timer.start();
    client.connectToHostEncrypted("127.0.0.1", server.serverPort());
    loop.exec();
    if (!ok) {
      std::fprintf(stderr, "handshake failed: %s\n", qPrintable(client.errorString()));
      return 1;
    }
    times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    client.disconnectFromHost();
  }
  std::sort(times.begin(), times.end());
  std::printf("loopback TLS handshake, %d runs: median %.2f ms, slowest %.2f ms\n", kRuns, times[times.size() / 2],
              times.back());
  return 0;
}
