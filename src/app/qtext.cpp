#include "app/qtext.h"

#include "core/text/cp1252.h"

namespace vonel {

QString toQString(std::string_view cp1252) {
  QString out;
  out.reserve(static_cast<qsizetype>(cp1252.size()));
  for (char c : cp1252) out += QChar(static_cast<char16_t>(text::cp1252ToUnicode(static_cast<unsigned char>(c))));
  return out;
}

std::string fromQString(const QString& text) {
  std::string out;
  out.reserve(static_cast<std::size_t>(text.size()));
  for (const QChar c : text) {
    out += text::unicodeToCp1252(c.unicode()).value_or('?');
  }
  return out;
}

}  // namespace vonel
