// The POP3 session fed random replies in random chunks: it must neither
// crash nor hang, whatever the server says. A download finds the id "b"
// stored before, so that UIDL lists reach the paths that pass over it.
#include <cstdint>
#include <filesystem>
#include <string>

#include "core/rules/message_check.h"
#include "core/context/app_context.h"
#include "core/files/atomic_file.h"
#include "core/files/file_info.h"
#include "core/files/file_text.h"
#include "protocol/pop3/pop3_session.h"

namespace {

struct QuietLink : vonel::protocol::Link {
  void connect(const std::string&, int) override {}
  void send(std::string_view) override {}
  void close() override {}
  void setTimer(bool) override {}
};

struct NoPassword : vonel::PasswordPrompt {
  std::string askPassword(std::string_view, std::string_view, bool& cancelled, bool& save) override {
    cancelled = true;
    save = false;
    return {};
  }
};

struct World {
  vonel::FixedClock clock{vonel::text::DateTime{2026, 1, 1, 0, 0, 0}};
  vonel::ScriptedPrompt prompt;
  std::filesystem::path home = std::filesystem::temp_directory_path() / "vonel-fuzz-pop3";
  vonel::AppContext ctx{clock, prompt, vonel::AppInfo{"Vonel", "", "", "", home}};
  QuietLink link;
  vonel::pop3::Pop3Listener events;
  vonel::rules::PassEverything check;
  NoPassword passwords;
  World() {
    std::filesystem::create_directories(home);
    ctx.log.loggingOff = true;
    ctx.settings.loadSettingsFromText("SERVER0,x\r\nUNAME0,u\r\nPWD0,p\r\nSTOPATLAST0,0\r\n", "fuzz");
    ctx.folders.readMessageFolder();
    ctx.folders.readDataFolder();
  }
  // Written only when a listing pruned it: each write waits for the disk.
  void storeIdB() {
    const auto file = ctx.folders.dataFolderPath / "Fetched0.txt";
    if (!vonel::files::fileExists(file) || vonel::files::loadTextFile(file) != "b\r\n") {
      vonel::files::writeTextFile(file, "b\r\n");
    }
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static World world;
  if (size < 2) return 0;
  vonel::pop3::Pop3Session session(world.ctx, world.link, world.events, world.check, world.check, world.passwords);
  world.storeIdB();
  // The first byte picks the mode and whether downloads are deleted, the second the chunk size.
  world.ctx.settings.set("DELETEONRETRIEVE", vonel::Value((data[0] & 8) != 0 ? 1 : 0));
  switch (data[0] % 4) {
    case 0: session.getHeaders(0, data[0] & 4); break;
    case 1: session.getMessages(0, data[0] & 4); break;
    case 2: session.getSpecificMessage(0, data[0] >> 4); break;
    default: session.deleteAllMail(0); break;
  }
  const std::size_t chunk = 1 + data[1] % 64;
  const std::string_view replies(reinterpret_cast<const char*>(data) + 2, size - 2);
  for (std::size_t at = 0; at < replies.size(); at += chunk) {
    session.onData(replies.substr(at, chunk));
    if (replies[at] == '\x01') session.onTick();
  }
  for (int tick = 0; tick < 31; ++tick) session.onTick();
  return 0;
}
