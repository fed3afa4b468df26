#pragma once
// Trusting a certificate the user has seen: its fingerprint is kept for that
// account's server and host (POPCERT<n>, SMTPCERT<n>) and the settings file
// is written at once, so a run of the account that follows finds it.
#include "app/untrusted_certificate.h"
#include "core/context/app_context.h"

namespace vonel {

void trustCertificate(AppContext& context, const UntrustedCertificate& certificate);

}  // namespace vonel
