#pragma once
// The one crossing between the program's Windows-1252 text and Qt's strings.
#include <QString>
#include <string>
#include <string_view>

namespace vonel {

QString toQString(std::string_view cp1252);
std::string fromQString(const QString& text);

}  // namespace vonel
