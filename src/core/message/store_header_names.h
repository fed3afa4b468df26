#pragma once
// The header lines the store writes into a message of its own (the read,
// replied and priority flags, the receive date, the tags): they belong to
// this machine and never go out with a sent message.
#include <array>
#include <string_view>

namespace vonel::message {

inline constexpr std::string_view kReceiveDateName = "X-Receive-Date";
inline constexpr std::string_view kTagsName = "X-Message-Tags";
inline constexpr std::string_view kReadName = "X-Message-Read";
inline constexpr std::string_view kRepliedName = "X-Message-Replied";
inline constexpr std::string_view kHighPriorityName = "X-Message-HighPriority";

inline constexpr std::array<std::string_view, 5> kStoreHeaderNames{kReceiveDateName, kTagsName, kReadName,
                                                                   kRepliedName, kHighPriorityName};

}  // namespace vonel::message
