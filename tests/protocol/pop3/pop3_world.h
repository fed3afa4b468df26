#pragma once
// A POP3 session's surroundings for its tests: a scripted server behind the
// link, a listener that records the events, and a filter that judges by
// the subject.
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "../../core/test_home.h"
#include "core/text/strings.h"
#include "protocol/pop3/pop3_session.h"

namespace vonel::pop3 {

// A POP3 server in a script: each command the session sends queues the
// reply written for it; the test hands the queued bytes over in chunks of a
// chosen size, so every way of splitting and joining replies gets its turn.
// It counts the commands whose replies haven't been handed over in full.
class ScriptedServer : public protocol::Link {
 public:
  std::map<std::string, std::string> replies;
  std::vector<std::string> commands;
  std::string outgoing;
  bool timerOn = false;
  int connects = 0;
  // Commands in flight once each write is in.
  std::vector<std::size_t> inFlightAtWrite;
  std::string host;
  int port = 0;

  void connect(const std::string& h, int p) override {
    ++connects;
    host = h;
    port = p;
    queue(greeting);
  }
  void send(std::string_view bytes) override {
    ASSERT_TRUE(bytes.ends_with("\r\n"));
    for (std::size_t at = 0; at < bytes.size();) {
      const std::size_t end = bytes.find("\r\n", at);
      const std::string command(bytes.substr(at, end - at));
      at = end + 2;
      commands.push_back(command);
      const auto it = replies.find(command);
      queue(it != replies.end() ? it->second : defaultReply(command));
      replyEnds_.push_back(queued_);
    }
    inFlightAtWrite.push_back(replyEnds_.size());
  }
  // Nothing more arrives on a closed connection.
  void close() override {
    outgoing.clear();
    handedOver_ = queued_;
    replyEnds_.clear();
    closed = true;
  }
  bool closed = false;
  std::size_t mostInFlight() const {
    return inFlightAtWrite.empty() ? 0 : *std::max_element(inFlightAtWrite.begin(), inFlightAtWrite.end());
  }
  void setTimer(bool on) override { timerOn = on; }

  // The test has handed `count` more bytes of `outgoing` to the session.
  void handedOver(std::size_t count) {
    handedOver_ += count;
    while (!replyEnds_.empty() && replyEnds_.front() <= handedOver_) replyEnds_.pop_front();
  }
  std::size_t inFlight() const { return replyEnds_.size(); }

  std::string greeting = "+OK ready\r\n";

 private:
  void queue(const std::string& bytes) {
    outgoing += bytes;
    queued_ += bytes.size();
  }
  static std::string defaultReply(const std::string& command) {
    if (command.starts_with("USER") || command.starts_with("PASS") || command.starts_with("DELE") ||
        command == "QUIT") {
      return "+OK\r\n";
    }
    if (command == "UIDL") return "-ERR unknown command\r\n";
    if (command == "CAPA") return "+OK\r\nTOP\r\nPIPELINING\r\nUIDL\r\n.\r\n";
    return "";  // silence
  }
  std::size_t queued_ = 0;
  std::size_t handedOver_ = 0;
  std::deque<std::size_t> replyEnds_;  // where each command's reply ends in all bytes queued
};

struct Events : Pop3Listener {
  std::vector<std::string> log;
  std::vector<message::Message> headers;
  std::vector<message::Message> downloads;
  std::function<void()> whenFinished;
  bool keep = true;  // whether a download was stored
  bool traceKept = true;  // whether a header about to be deleted left its trace

  void onHeaderReceived(message::Message& m) override {
    log.push_back("HeaderReceived");
    headers.push_back(m);
  }
  bool onMessageReceived(message::Message& m) override {
    log.push_back("MessageReceived");
    downloads.push_back(m);
    return keep;
  }
  void onSpecificMessage(message::Message& m) override {
    log.push_back("SpecificMessage");
    downloads.push_back(m);
  }
  bool onScreenedDelete(message::Message& m) override {
    log.push_back("ScreenedDelete " + m.subject);
    return traceKept;
  }
  void onProgress(const std::string& t) override { progress.push_back(t); }
  void onNumberMessagesFound(const std::string& t, long n) override {
    log.push_back("NumberMessagesFound " + t + " " + std::to_string(n));
  }
  void onPopError(const std::string& t, const std::string& text) override { log.push_back("POPError " + t + " " + text); }
  void onDoingServer(const std::string& t) override { log.push_back("DoingServer " + t); }
  void onTimedOut(const std::string& t, int s) override { log.push_back("TimedOut " + t + " " + std::to_string(s)); }
  void onFinished(const std::string& t, long n) override {
    log.push_back("Finished " + t + " " + std::to_string(n));
    if (whenFinished) whenFinished();
  }
  void onCancelled(const std::string& t) override { log.push_back("Cancelled " + t); }
  void onNoMailServer() override { log.push_back("NoMailServer"); }
  void onDeletedSpam(int n) override { log.push_back("DeletedSpam " + std::to_string(n)); }
  void onNoMail(const std::string& t) override { log.push_back("NoMail " + t); }
  void onNoConnection() override { log.push_back("NoConnection"); }
  void onFailure(const Pop3Failure& f) override { failures.push_back(f); }
  std::vector<std::string> progress;
  std::vector<Pop3Failure> failures;
};

// Marks as failing every message whose subject holds "spam".
struct SubjectCheck : rules::MessageCheck {
  void checkMessage(message::Message& m, bool) override {
    if (text::findNoCase(m.subject, "spam")) {
      m.deleted = true;
      m.filterReason = "subject";
    }
    if (text::findNoCase(m.subject, "ignore")) m.ignored = true;
    if (text::findNoCase(m.subject, "filed")) m.destFolder = "\\Lists";
  }
};

struct NoPassword : PasswordPrompt {
  int asked = 0;
  std::string prompt;
  std::string askPassword(std::string_view, std::string_view p, bool& cancelled, bool& save) override {
    ++asked;
    prompt = p;
    cancelled = true;
    save = false;
    return {};
  }
};

inline std::string topReply(int n, const std::string& subject) {
  return "+OK\r\nFrom: a" + std::to_string(n) + "@example.org\r\nSubject: " + subject + "\r\n\r\nbody\r\n.\r\n";
}

inline std::string retrReply(const std::string& subject, const std::string& body) {
  return "+OK message follows\r\nFrom: a@example.org\r\nSubject: " + subject + "\r\n\r\n" + body + ".\r\n";
}

// A session on one account, "Home", against a scripted server.
struct Pop3World {
  Pop3World() {
    ctx.settings.loadSettingsFromText(
        "TITLE0,Home\r\nSERVER0,pop.test\r\nUNAME0,jo\r\nPWD0,secret\r\nPOPPORT0,1110\r\n", "test");
    ctx.folders.readMessageFolder();
    ctx.folders.readDataFolder();
  }

  testing::TempDir dir;
  FixedClock clock{text::DateTime{2026, 11, 23, 10, 0, 5}};
  ScriptedPrompt prompt;
  AppContext ctx{clock, prompt, AppInfo{"Vonel", "1", "os", "/", dir.path()}};
  ScriptedServer server;
  Events events;
  SubjectCheck serverFilters;
  rules::PassEverything localFilters;
  NoPassword passwords;
  Pop3Session session{ctx, server, events, serverFilters, localFilters, passwords};

  void mailbox(const std::vector<std::string>& subjects, std::size_t listed = std::string::npos) {
    std::string list = "+OK\r\n";
    for (std::size_t i = 0; i < subjects.size() && i < listed; ++i) {
      list += std::to_string(i + 1) + " " + std::to_string(1000 * (i + 1)) + "\r\n";
    }
    server.replies["LIST"] = list + ".\r\n";
    server.replies["STAT"] = "+OK " + std::to_string(subjects.size()) + " 2048\r\n";
    for (std::size_t i = 0; i < subjects.size(); ++i) {
      server.replies["TOP " + std::to_string(i + 1) + " 1"] = topReply(static_cast<int>(i + 1), subjects[i]);
    }
  }

  // Delivers what the server has queued, in chunks of `chunk` bytes, until it falls silent.
  void deliver(std::size_t chunk) {
    while (!server.outgoing.empty()) {
      // Hand over what is queued now; replies to commands it provokes queue behind it.
      const std::string batch = std::move(server.outgoing);
      server.outgoing.clear();
      server.closed = false;
      for (std::size_t at = 0; at < batch.size(); at += chunk) {
        const std::string_view piece = std::string_view(batch).substr(at, chunk);
        server.handedOver(piece.size());
        session.onData(piece);
        if (server.closed) break;
      }
    }
  }

  bool progressed(const std::string& text) const {
    return std::find(events.progress.begin(), events.progress.end(), text) != events.progress.end();
  }

  std::string commands() const {
    std::string all;
    for (const auto& c : server.commands) all += c + "|";
    return all;
  }
};

}  // namespace vonel::pop3
