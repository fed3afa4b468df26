#pragma once
// A message's text as it came from the server, in a window of its own.
#include <filesystem>

class QWidget;

namespace vonel {

// Reads the file now, so the file may go as soon as this returns.
void showSourceWindow(const std::filesystem::path& file, QWidget* parent);

}  // namespace vonel
