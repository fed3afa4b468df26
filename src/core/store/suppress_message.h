#pragma once
// The exclusive-recipient test of an account: mail that reached the account
// without naming one of its one or two exclusive addresses is held back.
#include "core/message/message.h"
#include "core/settings/settings.h"

namespace vonel::store {

// True when the message's account has exclusive addresses ("Exclusive0_<n>",
// "Exclusive1_<n>") and neither its To nor its CC holds one, ignoring case.
bool SuppressMessage(const message::clsMessage& message, const cSHAREDSettings& settings);

}  // namespace vonel::store
