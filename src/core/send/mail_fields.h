#pragma once
// What an outgoing message is made of before it becomes a spool file: the
// addresses, the texts, the attachments and how to encode them.
#include <cstdint>
#include <string>
#include <vector>

namespace vonel::send {

// How the spool is encoded; the number is the one kept in the settings.
enum class EncodeType : std::int32_t { Mime = 0, UUEncode = 1 };

// The X-Priority header carries the number.
enum class Priority : std::int32_t { Highest = 1, High = 2, Normal = 3, Low = 4, Lowest = 5 };

struct MailFields {
  std::vector<std::string> recipient;
  std::vector<std::string> recipientDisplayName;  // aligned with recipient; may be shorter
  std::vector<std::string> ccRecipient;
  std::vector<std::string> ccDisplayName;
  std::vector<std::string> bccRecipient;
  std::string from;
  std::string fromDisplayName;
  std::string replyToAddress;
  std::string subject;
  std::string message;  // long lines cut; the dots of DATA are added on the wire
  std::string inReplyTo;
  std::string messageId;  // "<...>"; written when not empty
  std::vector<std::string> attachmentPaths;
  std::vector<std::string> attachmentNames;
  std::int64_t attachmentNameBytes = 0;
  std::int64_t attachmentFileBytes = 0;
  Priority priority = Priority::Normal;
  std::string priorityWord;
  bool asHtml = false;
  std::string contentBase;
  EncodeType encodeType = EncodeType::Mime;
  bool receipt = false;
  bool eightBit = false;
  bool useAuthentication = false;
  std::string username;
  std::string password;
};

// The error texts of the recipient checks that both sending and spooling make.
inline constexpr const char* kNoRecipient = "No Recipient E-mail Address Specified";
inline constexpr const char* kTooManyRecipients = "Too many recipients";
inline constexpr std::size_t kMaxRecipients = 100;

// The texts of the recipient checks the message fails, in their order.
inline std::vector<const char*> recipientProblems(const MailFields& mail) {
  std::vector<const char*> problems;
  if (mail.recipient.empty()) problems.push_back(kNoRecipient);
  if (mail.recipient.size() + mail.ccRecipient.size() + mail.bccRecipient.size() > kMaxRecipients) {
    problems.push_back(kTooManyRecipients);
  }
  return problems;
}

}  // namespace vonel::send
