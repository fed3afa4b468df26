#pragma once
// The exclusive-recipient test of an account: mail that reached the account
// without naming one of its one or two exclusive addresses is held back.
#include "core/message/message.h"
#include "core/settings/settings_store.h"

namespace vonel::store {

// True when the message's account has exclusive addresses ("Exclusive0_<n>",
// "Exclusive1_<n>") and neither its To nor its cc holds one, ignoring case.
bool suppressMessage(const message::Message& message, const SettingsStore& settings);

}  // namespace vonel::store
