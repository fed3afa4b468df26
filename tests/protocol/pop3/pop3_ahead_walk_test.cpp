// The header walk with its TOPs sent ahead: the same results as one command
// at a time, by any splitting of the replies, within its bound, and safe
// when the server misbehaves.
#include <gtest/gtest.h>

#include "pop3_world.h"

namespace vonel::pop3 {
namespace {

// What a walk showed its owner and sent, apart from the order of the wire
// and of the confirmed deletes among the other events.
struct Outcome {
  std::vector<std::string> events;
  long deletedSpam = 0;
  std::vector<std::string> progress;
  std::vector<std::string> headers;  // each listed header's number, text and verdict
  std::vector<std::string> deletes;

  bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& o) {
  for (const auto* list : {&o.events, &o.progress, &o.headers, &o.deletes}) {
    for (const auto& line : *list) out << line << "|";
    out << "\n";
  }
  return out << o.deletedSpam << " deleted\n";
}

// "+OK" and "-ERR" inside a header are data, and so is a dot-stuffed line.
std::string trickyTop(int n) {
  return "+OK " + std::to_string(n) + " follows\r\nFrom: x" + std::to_string(n) +
         "@example.org\r\nSubject: re-error +OK\r\n+OK\r\n-ERR\r\n..\r\n.. dotted\r\n\r\n.\r\n";
}

// A scan of one mailbox, with or without pipelining.
struct Walk : Pop3World {
  Walk(bool pipelining, const std::vector<std::string>& subjects) {
    ctx.settings.set("POPPIPELINING0", Value(pipelining));
    mailbox(subjects);
    for (std::size_t i = 0; i < subjects.size(); ++i) {
      if (subjects[i] == "tricky") server.replies["TOP " + std::to_string(i + 1) + " 1"] = trickyTop(int(i) + 1);
    }
  }

  Outcome scan(bool deleteSpam, std::size_t chunk) {
    session.getHeaders(0, deleteSpam);
    deliver(chunk);
    return outcome();
  }

  Outcome outcome() const {
    Outcome o{{}, 0, events.progress, {}, {}};
    for (const auto& e : events.log) {
      if (e == "DeletedSpam 1") ++o.deletedSpam;
      else o.events.push_back(e);
    }
    for (const auto& m : events.headers) {
      o.headers.push_back(std::to_string(m.messageNumThisAcc) + " " + m.messageText() + " " + std::to_string(m.size) +
                          " " + m.filterReason + (m.deleted ? " deleted" : "") + (m.ignored ? " ignored" : ""));
    }
    for (const auto& c : server.commands) {
      if (c.starts_with("DELE")) o.deletes.push_back(c);
    }
    return o;
  }

  bool said(const std::string& command) const {
    return std::find(server.commands.begin(), server.commands.end(), command) != server.commands.end();
  }

  void tickUntilTimeOut() {
    for (int i = 0; i < 30; ++i) session.onTick();
  }
};

const std::vector<std::string> kMixed{"good",   "spam offer", "tricky", "please ignore", "spam again",
                                      "tricky", "fine",       "spam",   "last one"};

class AheadWalk : public ::testing::TestWithParam<std::size_t> {};

TEST_P(AheadWalk, ListsDeletesAndReportsAsOneCommandAtATime) {
  for (const bool deleteSpam : {false, true}) {
    Walk lockStep(false, kMixed);
    Walk ahead(true, kMixed);
    const Outcome expected = lockStep.scan(deleteSpam, GetParam());
    EXPECT_EQ(ahead.scan(deleteSpam, GetParam()), expected) << "delete " << deleteSpam;
    EXPECT_EQ(ahead.server.commands.front() + ahead.server.commands[1] + ahead.server.commands[2], "USER joPASS secretCAPA");
    EXPECT_EQ(ahead.server.commands.back(), "QUIT");
    // Every TOP was out before the first reply came back.
    EXPECT_EQ(ahead.server.mostInFlight(), kMixed.size());
    EXPECT_EQ(lockStep.server.mostInFlight(), 1u);
  }
  Walk ahead(true, kMixed);
  const Outcome deleted = ahead.scan(true, GetParam());
  EXPECT_EQ(deleted.deletes, (std::vector<std::string>{"DELE 2", "DELE 5", "DELE 8"}));
  EXPECT_EQ(deleted.deletedSpam, 3);
  // The tricky header reached the check whole, its stuffing as sent.
  EXPECT_NE(deleted.headers[1].find("Subject: re-error +OK\r\n+OK\r\n-ERR\r\n..\r\n.. dotted\r\n"), std::string::npos);
}

TEST_P(AheadWalk, ATopRefusedInsideTheRangeStopsWhereOneAtATimeStops) {
  const std::vector<std::string> subjects{"one", "spam two", "three", "four", "spam five", "six"};
  Walk lockStep(false, subjects);
  Walk ahead(true, subjects);
  for (Walk* walk : {&lockStep, &ahead}) {
    walk->server.replies["TOP 4 1"] = "-ERR no such message\r\n";
    walk->scan(true, GetParam());
    walk->tickUntilTimeOut();
  }
  EXPECT_EQ(ahead.outcome(), lockStep.outcome());
  EXPECT_EQ(ahead.outcome().deletes, (std::vector<std::string>{"DELE 2"}));
  EXPECT_FALSE(ahead.said("QUIT"));  // so the server commits no delete
  EXPECT_EQ(ahead.events.log.back(), "TimedOut Home 30");
}

TEST_P(AheadWalk, PastTheLastMessageTheWalkGoesOnOneAtATime) {
  const std::vector<std::string> subjects{"a", "spam b", "c"};
  Walk ahead(true, subjects);
  ahead.ctx.settings.set("STOPATLAST0", Value(false));
  ahead.server.replies["TOP 4 1"] = "-ERR no such message\r\n";
  ahead.scan(true, GetParam());
  const auto& c = ahead.server.commands;
  EXPECT_EQ(std::vector<std::string>(c.end() - 2, c.end()), (std::vector<std::string>{"TOP 4 1", "QUIT"}));
  // TOP 4 waited for every earlier reply.
  EXPECT_EQ(ahead.server.inFlightAtWrite[ahead.server.inFlightAtWrite.size() - 2], 1u);
  EXPECT_EQ(ahead.events.log.back(), "Finished Home 0");
  EXPECT_TRUE(ahead.events.failures.empty());
}

INSTANTIATE_TEST_SUITE_P(Splits, AheadWalk, ::testing::Values(1, 2, 3, 5, 64, 100000));

TEST(AheadWalkChoice, OnlyAnAnnouncedPipelineInAHeaderScanSendsAhead) {
  const std::vector<std::string> three{"a", "b", "c"};
  struct Case {
    const char* what;
    std::string capaReply;
    bool setting;
    bool lockstep;
    std::size_t inFlight;
    bool capaSent;
  };
  const std::vector<Case> cases{
      {"announced twice", "+OK\r\nPIPELINING\r\npipelining\r\n.\r\n", true, false, 3, true},
      {"refused", "-ERR unknown command\r\n", true, false, 1, true},
      {"not announced", "+OK\r\nTOP\r\nPIPELINING-NOT\r\nUSER\r\n.\r\n", true, false, 1, true},
      {"switched off", "", false, false, 1, false},
      {"--lockstep", "", true, true, 1, false},
  };
  for (const Case& c : cases) {
    Walk walk(c.setting, three);
    walk.ctx.popLockstep = c.lockstep;
    if (!c.capaReply.empty()) walk.server.replies["CAPA"] = c.capaReply;
    walk.scan(false, 100000);
    EXPECT_EQ(walk.server.mostInFlight(), c.inFlight) << c.what;
    EXPECT_EQ(walk.said("CAPA"), c.capaSent) << c.what;
    EXPECT_EQ(walk.events.headers.size(), 3u) << c.what;
    EXPECT_TRUE(walk.events.failures.empty()) << c.what;
  }
  // A download stays one command at a time and never asks.
  Walk download(true, three);
  download.session.getMessages(0, false);
  download.deliver(100000);
  EXPECT_FALSE(download.said("CAPA"));
}

TEST(AheadWalkChoice, ACapabilityListWithoutEndIsBoundedLikeAnyList) {
  Walk walk(true, {"a"});
  walk.server.replies["CAPA"] = "+OK\r\nPIPELINING\r\n";
  walk.scan(false, 100000);
  EXPECT_EQ(walk.server.commands.back(), "CAPA");  // silence: the time-out ends it
  const std::string line(1000, 'x');
  for (std::size_t sent = 0; sent <= kLongestGatheredReply && walk.session.state() == Pop3State::AwaitCapaLines;
       sent += line.size() + 2) {
    walk.session.onData(line + "\r\n");
  }
  EXPECT_EQ(walk.events.log.back(), "Finished Home 0");
  EXPECT_EQ(walk.events.failures.back().kind, FailureKind::BadReply);
}

TEST(AheadWalkBound, CommandsInFlightStayWithinCountAndBytes) {
  std::vector<std::string> many(1500, "x");
  Walk small(true, many);
  small.scan(false, 4096);
  EXPECT_EQ(small.events.headers.size(), 1500u);
  EXPECT_EQ(small.server.mostInFlight(), kPipelineBound.commands);

  // Headers of 16 KiB: once their size is known, the bytes bound the window.
  std::vector<std::string> large(600, "y");
  Walk big(true, large);
  const std::string filler = "X-Filler: " + std::string(16 * 1024, 'f') + "\r\n";
  for (int n = 1; n <= 600; ++n) {
    big.server.replies["TOP " + std::to_string(n) + " 1"] = "+OK\r\nSubject: big\r\n" + filler + "\r\n.\r\n";
  }
  big.scan(false, 4096);
  EXPECT_EQ(big.events.headers.size(), 600u);
  const auto& counts = big.server.inFlightAtWrite;
  const std::size_t settled = *std::max_element(counts.begin() + counts.size() / 2, counts.end());
  EXPECT_LE(settled, kPipelineBound.bytes / filler.size());
  EXPECT_GT(settled, 1u);
}

TEST(AheadWalkFailures, AConnectionLostMidBatchCommitsNoDelete) {
  std::vector<std::string> subjects;
  for (int n = 1; n <= 30; ++n) subjects.push_back(n % 3 == 0 ? "spam" : "ham");
  Walk walk(true, subjects);
  walk.session.getHeaders(0, true);
  // Log-in and list, then half the header replies.
  while (walk.server.commands.empty() || !walk.server.commands.back().starts_with("TOP")) {
    const std::string queued = std::exchange(walk.server.outgoing, {});
    walk.server.handedOver(queued.size());
    walk.session.onData(queued);
  }
  const std::string half = walk.server.outgoing.substr(0, walk.server.outgoing.size() / 2);
  walk.session.onData(half);
  walk.session.onSocketError(protocol::SocketError::ConnectionAborted, "Connection closed");
  EXPECT_FALSE(walk.said("QUIT"));
  EXPECT_FALSE(walk.outcome().deletes.empty());
  EXPECT_EQ(walk.events.log.back(), "Finished Home 0");
  EXPECT_EQ(walk.events.failures.back().kind, FailureKind::ConnectionLost);
}

TEST(AheadWalkFailures, ARefusedDeleEndsTheSessionWithoutCommittingLaterDeletes) {
  const std::vector<std::string> subjects{"a", "spam b", "spam c", "d"};
  Walk walk(true, subjects);
  walk.server.replies["DELE 2"] = "-ERR no\r\n";
  walk.scan(true, 100000);
  EXPECT_TRUE(walk.said("DELE 3"));  // sent with DELE 2, before its refusal
  EXPECT_FALSE(walk.said("QUIT"));
  EXPECT_NE(std::find(walk.events.log.begin(), walk.events.log.end(), "POPError Home -ERR no\r\n"),
            walk.events.log.end());
  EXPECT_EQ(walk.events.log.back(), "Finished Home 0");
  EXPECT_EQ(walk.events.failures.back().kind, FailureKind::ServerRefused);

  // With nothing behind it, QUIT commits the deletes before it, as one at a time does.
  Walk alone(true, {"spam a", "b"});
  alone.server.replies["DELE 1"] = "-ERR no\r\n";
  alone.scan(true, 1);
  EXPECT_EQ(alone.server.commands.back(), "QUIT");
  EXPECT_EQ(alone.events.failures.back().kind, FailureKind::ServerRefused);

  // The last message's refusal is the quiet end of the walk.
  Walk last(true, {"a", "spam b"});
  last.server.replies["DELE 2"] = "-ERR no\r\n";
  last.scan(true, 100000);
  EXPECT_EQ(last.server.commands.back(), "QUIT");
  EXPECT_TRUE(last.events.failures.empty());
  EXPECT_EQ(last.events.progress.back(), "Home scan complete");
}

TEST(AheadWalkFailures, MissingOrExtraRepliesNeverQuitEarly) {
  // A header without its terminator swallows the next reply: the last never comes.
  Walk unended(true, {"a", "b", "spam c", "d"});
  unended.server.replies["TOP 2 1"] = "+OK\r\nSubject: b\r\n\r\n";
  unended.scan(true, 7);
  EXPECT_FALSE(unended.said("QUIT"));
  unended.tickUntilTimeOut();
  EXPECT_EQ(unended.events.log.back(), "TimedOut Home 30");

  // A reply too many is taken as the reply to QUIT, as one at a time takes it.
  const std::vector<std::string> two{"a", "b"};
  Walk lockStep(false, two);
  Walk ahead(true, two);
  for (Walk* walk : {&lockStep, &ahead}) {
    walk->server.replies["TOP 2 1"] = topReply(2, "b") + "+OK surplus\r\n";
    walk->scan(false, 3);
  }
  EXPECT_EQ(ahead.outcome(), lockStep.outcome());
  EXPECT_EQ(ahead.events.log.back(), "Finished Home 0");

  // A silent server leaves the walk to the time-out.
  Walk silent(true, {"a", "b", "c"});
  silent.server.replies["TOP 3 1"] = "";
  silent.scan(false, 100000);
  EXPECT_FALSE(silent.said("QUIT"));
  EXPECT_EQ(silent.events.headers.size(), 2u);
}

}  // namespace
}  // namespace vonel::pop3
