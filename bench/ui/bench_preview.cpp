// The mail window's preview: time from asking for a message to its pane
// painted, for a typical mail, a big one, a body of one 20 MB line and one
// with 10,000 "@". Prints one line per case.
#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <cstdio>
#include <fstream>

#include "core/context/app_context.h"
#include "ui/mailer/message_preview.h"

using namespace vonel;

namespace {

std::string mail(const std::string& body) {
  return "From: Ann Example <ann@example.com>\r\nTo: Bob <bob@example.org>\r\nSubject: Figures\r\n"
         "Date: Mon, 23 Nov 2026 08:05:09 +0000\r\n\r\n" +
         body;
}

// Prose lines with a link and an address now and then, to `size` bytes.
std::string prose(std::size_t size) {
  const std::string lines[] = {
      "The quarterly figures are in; see http://reports.example.com/q3 for the detail.\r\n",
      "Please send corrections to ann@example.com before Friday, as agreed.\r\n",
      "Nothing else has changed since the last meeting, so the plan stands.\r\n",
  };
  std::string body;
  for (std::size_t i = 0; body.size() < size; ++i) body += lines[i % 3];
  return body;
}

std::string manyAts() {
  std::string body;
  for (int i = 0; i < 10000; ++i) body += "user" + std::to_string(i) + "@host" + std::to_string(i) + ".example, ";
  return body;
}

double shownAfter(MessagePreview& preview, const std::filesystem::path& file) {
  QElapsedTimer clock;
  clock.start();
  preview.showMessage(file);
  QApplication::processEvents();
  preview.grab();  // lays the text out and paints the pane
  return clock.nsecsElapsed() / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  QTemporaryDir dir;
  const std::filesystem::path home = dir.path().toStdString();
  const SystemClock clock;
  ScriptedPrompt prompt;
  AppContext context(clock, prompt, AppInfo{"Vonel", "bench", "", "/", home});
  MessagePreview preview(context);
  preview.resize(900, 600);
  preview.show();

  const std::pair<const char*, std::string> cases[] = {
      {"typical 5 KB mail", mail(prose(5 * 1024))},
      {"1 MB mail", mail(prose(1024 * 1024))},
      {"20 MB one-line body", mail(std::string(20 * 1024 * 1024, 'x'))},
      {"10,000 \"@\" in a body", mail(manyAts())},
  };
  std::printf("%-24s %12s %12s\n", "preview of", "bytes", "shown (ms)");
  for (const auto& [name, text] : cases) {
    const std::filesystem::path file = home / "message.eml";
    std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
    preview.clear();
    std::printf("%-24s %12zu %12.1f\n", name, text.size(), shownAfter(preview, file));
  }
  return 0;
}
