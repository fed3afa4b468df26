#pragma once
// The error report: what the user is shown when something failed that they
// should know about.
#include <string>
#include <string_view>

#include "core/log/app_error.h"
#include "core/interaction/prompt.h"

namespace vonel {

void showError(Prompt& prompt, std::string_view text, std::string_view details = {});
// "<extra><number> - <description> in <procedure> of <module>".
void showErrorReport(Prompt& prompt, const AppError& error, std::string_view module, std::string_view procedure,
                std::string_view extra = {});

}  // namespace vonel
