#pragma once
// The transfer decoders of mail bodies and encoded words. Both are forgiving:
// any bytes give a result, and neither throws.
#include <string>
#include <string_view>

namespace vonel::message {

// A repair-minded quoted-printable decoder: soft line breaks normally stay
// hard line ends, "=0D" and "=2E" become line ends, and the result is trimmed.
std::string quotedPrintableDecode(std::string_view text);

// Standard base64. Characters outside the alphabet are skipped and the first
// "=" ends the data. The result keeps the blank fill of the buffer it was
// decoded into (3 n / 4 + 2 bytes, n the encoded length less line ends).
std::string decodeMime64(std::string_view text);

// The exact bytes of standard base64, for files that must open: characters
// outside the alphabet are skipped, the first "=" ends the data, no fill.
std::string decodeBase64Bytes(std::string_view text);

// Standard quoted-printable, for files that must open: soft line breaks go,
// hex pairs (either case) become bytes, any other "=" stays, nothing is trimmed.
std::string decodeQuotedPrintableBytes(std::string_view text);

// Base64 without line breaks.
std::string encodeMime64String(std::string_view text);

}  // namespace vonel::message
