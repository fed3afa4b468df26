#include "core/log/show_error.h"

namespace vonel {

void showError(Prompt& prompt, std::string_view text, std::string_view details) { prompt.showError(text, details); }

void showErrorReport(Prompt& prompt, const AppError& error, std::string_view module, std::string_view procedure,
                std::string_view extra) {
  std::string text(extra);
  text += std::to_string(error.number()) + " - " + error.description() + " in ";
  text += procedure;
  text += " of ";
  text += module;
  showError(prompt, text);
}

}  // namespace vonel
