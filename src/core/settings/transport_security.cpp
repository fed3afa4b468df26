#include "core/settings/transport_security.h"

#include "core/text/strings.h"

namespace vonel {

TransportSecurity transportSecurity(double stored) {
  if (stored == 1) return TransportSecurity::Tls;
  if (stored == 2) return TransportSecurity::Upgrade;
  return TransportSecurity::Plain;
}

int defaultPort(MailService service, TransportSecurity security) {
  if (service == MailService::Pop3) return security == TransportSecurity::Tls ? 995 : 110;
  switch (security) {
    case TransportSecurity::Tls: return 465;
    case TransportSecurity::Upgrade: return 587;
    case TransportSecurity::Plain: break;
  }
  return 25;
}

std::string_view serviceName(MailService service) { return service == MailService::Pop3 ? "pop" : "smtp"; }

bool CertificatePin::matches(std::string_view peerHost, std::string_view peerFingerprint) const {
  return !fingerprint.empty() && text::equalsNoCase(host, peerHost) && text::equalsNoCase(fingerprint, peerFingerprint);
}

std::string CertificatePin::stored() const { return fingerprint.empty() ? std::string() : host + " " + fingerprint; }

CertificatePin CertificatePin::fromStored(std::string_view text) {
  const std::string_view trimmed = text::trimView(text);
  const std::size_t blank = trimmed.rfind(' ');
  if (blank == std::string_view::npos) return {};
  return {std::string(text::trimView(trimmed.substr(0, blank))), std::string(trimmed.substr(blank + 1))};
}

}  // namespace vonel
