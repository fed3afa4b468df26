#pragma once
// Mail links (RFC 6068): "mailto:" + addresses + "?" + fields. What a link
// may ask of the composer is the addressee, the subject and the body.
#include <string>
#include <string_view>

namespace vonel::message {

// UTF-8, as links carry their text.
struct ComposeRequest {
  std::string to;
  std::string subject;
  std::string body;
};

// Decodes what follows "mailto:". The addresses up to "?" and each field are
// percent-decoded; "to" fields join the addresses, the first "subject" and
// "body" fields are taken, and every other field is ignored: "attach" and
// "attachment" above all, since a link must never attach a user's files.
// Control characters (NUL, CR, LF...) in the addresses and the subject become
// blanks, so a link can't add header lines; the body keeps its line breaks
// and loses only NULs.
ComposeRequest decodeMailto(std::string_view link);

}  // namespace vonel::message
