#include "app/certificate_trust.h"

#include "core/settings/accounts.h"

namespace vonel {

void trustCertificate(AppContext& context, const UntrustedCertificate& certificate) {
  storeCertificatePin(context.settings, certificate.account, certificate.service,
                      {certificate.host, certificate.fingerprint});
  context.settings.saveSettings(context.settingsFile());
}

}  // namespace vonel
