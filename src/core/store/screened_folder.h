#pragma once
// The trace of mail deleted on the server from its headers alone: its header
// block as a read, header-only message in the store folder "Screened", with
// the verdict in one line ("X-Screened: FAIL; score 0.99; Blocked sender").
// Entries go after `ScreenedDays` days, 30 unless set.
#include <filesystem>
#include <string>
#include <string_view>

#include "core/context/app_context.h"
#include "core/message/message.h"

namespace vonel::store {

inline constexpr std::string_view kScreenedFolderName = "Screened";

// The verdict word, the spam score and the rule's reason: "FAIL; score 0.99; Blocked sender".
std::string screenedVerdict(const message::Message& message);

// Writes the header's entry (through a temporary file) and gives its path.
// The folder is made when missing, and the folder lists are then written
// again. Throws AppError when the entry can't be written.
std::filesystem::path keepScreenedHeader(AppContext& context, const message::Message& message);

// Erases the entries written more than `ScreenedDays` days ago; a setting
// of 0 or less keeps them all. Gives how many went.
int removeOldScreened(AppContext& context);

}  // namespace vonel::store
