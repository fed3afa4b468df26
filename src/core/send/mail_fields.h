#pragma once
// What an outgoing message is made of before it becomes a spool file: the
// addresses, the texts, the attachments and how to encode them.
#include <cstdint>
#include <string>
#include <vector>

namespace vonel::send {

enum class EncodeType : std::int32_t { Mime = 0, UUEncode = 1 };

struct MailFields {
  std::vector<std::string> Recipient;
  std::vector<std::string> RecipientDisplayName;  // aligned with Recipient; may be shorter
  std::vector<std::string> CcRecipient;
  std::vector<std::string> CcDisplayName;
  std::vector<std::string> BccRecipient;
  std::string From;
  std::string FromDisplayName;
  std::string ReplyToAddress;
  std::string Subject;
  std::string Message;  // already made fit for DATA
  std::string InReplyTo;
  std::vector<std::string> attachmentPaths;
  std::vector<std::string> attachmentNames;
  std::int64_t attachmentNameBytes = 0;
  std::int64_t attachmentFileBytes = 0;
  std::int32_t Priority = 3;
  std::string priorityWord;
  bool AsHTML = false;
  std::string ContentBase;
  EncodeType encodeType = EncodeType::Mime;
  bool Receipt = false;
  bool eightBit = false;
  bool UseAuthentication = false;
  std::string Username;
  std::string Password;
};

// The error texts of the recipient checks that both sending and spooling make.
inline constexpr const char* kNoRecipient = "No Recipient E-mail Address Specified";
inline constexpr const char* kTooManyRecipients = "Too many recipients";
inline constexpr std::size_t kMaxRecipients = 100;

}  // namespace vonel::send
