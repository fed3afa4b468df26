#pragma once
// Passwords in the settings file are scrambled, not encrypted: enough that a
// casual reader of the file doesn't see them.
#include <string>
#include <string_view>

namespace vonel {

std::string encrypt(std::string_view plain);
std::string decrypt(std::string_view scrambled);

}  // namespace vonel
