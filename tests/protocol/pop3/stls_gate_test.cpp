#include "protocol/pop3/stls_gate.h"

#include <gtest/gtest.h>

#include <vector>

namespace vonel::pop3 {
namespace {

struct RecordingPeer : GatePeer {
  std::string written;
  std::string delivered;
  int handshakes = 0;
  void writeToServer(std::string_view bytes) override { written += bytes; }
  void deliverToSession(std::string_view bytes) override { delivered += bytes; }
  void startTls() override { ++handshakes; }
};

// Feeds the bytes cut at `at` (and whole when at is 0).
void feed(StlsGate& gate, std::string_view bytes, std::size_t at) {
  if (at == 0 || at >= bytes.size()) return gate.onData(bytes);
  gate.onData(bytes.substr(0, at));
  gate.onData(bytes.substr(at));
}

TEST(StlsGate, UpgradeHoldsTheGreetingUntilTheHandshakeAtEverySplit) {
  const std::string greeting = "+OK Dovecot ready.\r\n";
  const std::string stlsReply = "+OK Begin TLS negotiation now.\r\n";
  // Bytes after the +OK came in plain text: they never reach the session.
  const std::string wire = greeting + stlsReply + "+OK injected\r\n";
  for (std::size_t at = 0; at < wire.size(); ++at) {
    RecordingPeer peer;
    StlsGate gate(peer);
    gate.begin(TransportSecurity::Upgrade);
    gate.onConnected();
    feed(gate, wire.substr(0, greeting.size()), at);
    EXPECT_EQ(peer.written, "STLS\r\n");
    feed(gate, wire.substr(greeting.size()), at > greeting.size() ? at - greeting.size() : 0);
    EXPECT_EQ(peer.handshakes, 1) << at;
    EXPECT_TRUE(peer.delivered.empty()) << at;
    EXPECT_FALSE(gate.open());
    gate.onEncrypted();
    EXPECT_TRUE(gate.open());
    EXPECT_EQ(peer.delivered, greeting) << at;
    gate.onData("+OK user\r\n");
    EXPECT_EQ(peer.delivered, greeting + "+OK user\r\n");
  }
}

TEST(StlsGate, RefusalsReachTheSessionAsAGreetingItRefuses) {
  struct Case {
    const char* name;
    TransportSecurity security;
    std::string wire;
    const char* tlsFailure;
    std::string delivered;
  };
  const std::vector<Case> cases{
      {"STLS refused", TransportSecurity::Upgrade, "+OK hi\r\n-ERR no TLS here\r\n", nullptr, "-ERR no TLS here\r\n"},
      {"error greeting", TransportSecurity::Upgrade, "-ERR busy\r\n", nullptr, "-ERR busy\r\n"},
      {"handshake fails after STLS", TransportSecurity::Upgrade, "+OK hi\r\n+OK go\r\n", "bad certificate",
       "bad certificate\r\n"},
      {"handshake fails on 995", TransportSecurity::Tls, "", "The certificate of h is not trusted",
       "The certificate of h is not trusted\r\n"},
      {"plain server on 995 sends text", TransportSecurity::Tls, "+OK plain\r\n", "handshake failed",
       "handshake failed\r\n"},
  };
  for (const Case& c : cases) {
    RecordingPeer peer;
    StlsGate gate(peer);
    gate.begin(c.security);
    gate.onConnected();
    gate.onData(c.wire);
    if (c.tlsFailure) gate.onTlsFailed(c.tlsFailure);
    EXPECT_EQ(peer.delivered, c.delivered) << c.name;
    EXPECT_FALSE(gate.open()) << c.name;
    // Nothing more reaches the session, and a second failure isn't reported twice.
    gate.onData("+OK late\r\n");
    gate.onTlsFailed("again");
    EXPECT_EQ(peer.delivered, c.delivered) << c.name;
  }
}

TEST(StlsGate, PlainIsAPassageAndALineWithoutEndIsCut) {
  RecordingPeer peer;
  StlsGate gate(peer);
  gate.begin(TransportSecurity::Plain);
  EXPECT_TRUE(gate.open());
  gate.onData("+OK");
  EXPECT_EQ(peer.delivered, "+OK");
  gate.onTlsFailed("ignored");
  EXPECT_EQ(peer.delivered, "+OK");

  RecordingPeer endless;
  StlsGate upgrade(endless);
  upgrade.begin(TransportSecurity::Upgrade);
  const std::string endlessGreeting = "+OK " + std::string(10000, 'x');
  upgrade.onData(endlessGreeting);
  EXPECT_TRUE(endless.written.empty());
  EXPECT_EQ(upgrade.state(), StlsGate::State::Refused);
  EXPECT_EQ(endless.delivered, endlessGreeting);
}

TEST(StlsGate, TlsFromTheFirstByteOpensOnlyAfterItsHandshake) {
  RecordingPeer peer;
  StlsGate gate(peer);
  gate.begin(TransportSecurity::Tls);
  EXPECT_FALSE(gate.handshaking());
  gate.onConnected();
  EXPECT_TRUE(gate.handshaking());
  gate.onEncrypted();
  EXPECT_TRUE(gate.open());
  EXPECT_TRUE(peer.delivered.empty());
  EXPECT_TRUE(peer.written.empty());
  // A new connection starts over.
  gate.begin(TransportSecurity::Tls);
  EXPECT_FALSE(gate.open());
}

}  // namespace
}  // namespace vonel::pop3
