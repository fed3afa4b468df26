#pragma once
// The sandbox's sample mail, made in code so that every run has the same
// bytes: what waits on the two sandbox mailboxes, and the stored good mail
// and spam that training learns from. Only the Date: lines move with the
// day, each a fixed time before it, so the scanner's age colours show.
#include <QDate>
#include <string>
#include <vector>

namespace vonel::sandbox {

// Where a sample message lies: on one of the two servers, or in the store.
enum class SampleBox { Home, Work, Inbox, Spam };

struct SampleMessage {
  SampleBox box;
  std::string name;   // a file name without folder, unique in its box
  std::string bytes;  // the message, lines ended by CR LF
};

std::vector<SampleMessage> sampleMail(const QDate& day);

}  // namespace vonel::sandbox
