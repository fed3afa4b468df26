// vonel-inspect folder DIR [--root ROOT]
//   Fills the cache of a store folder as the mail window does on opening it,
//   writes "cache.xml", prints one line per message (file name, read state,
//   size in KB, From, Subject) and how many message files it had to open.
//   ROOT (default: the folder above DIR) is the store root cached paths are
//   rebased onto.
// vonel-inspect folder --list-folders ROOT
//   Prints the store's folder tree with the unread counts of the tag files.
#include <ostream>

#include "core/context/app_context.h"
#include "core/files/file_info.h"
#include "core/interaction/progress.h"
#include "core/store/folder_cache.h"
#include "core/store/folder_lists.h"
#include "core/store/tag_files.h"
#include "core/text/cp1252.h"
#include "core/text/numbers.h"
#include "core/text/strings.h"
#include "inspect/command.h"

namespace vonel::inspect {
namespace {

namespace fs = std::filesystem;

int listFolders(const fs::path& root, std::ostream& out, std::ostream& err) {
  if (!files::folderExists(root)) {
    err << "no such folder: " << root.string() << "\n";
    return 2;
  }
  for (const std::string& relative : store::listStoreFolders(root)) {
    const auto pieces = text::split(relative, "\\");
    const int unread = store::unreadTagCount(store::storeFolder(root, relative));
    out << std::string(2 * (pieces.size() - 2), ' ') << text::cp1252ToUtf8(pieces[pieces.size() - 2]);
    if (unread > 0) out << " (" << unread << ")";
    out << "\n";
  }
  return 0;
}

int showFolder(const fs::path& folder, const fs::path& root, std::ostream& out, std::ostream& err) {
  if (!files::folderExists(folder)) {
    err << "no such folder: " << folder.string() << "\n";
    return 2;
  }
  SystemClock clock;
  ScriptedPrompt prompt;
  AppContext context(clock, prompt, AppInfo{"Vonel", "inspect", "", folder, folder});
  context.log.loggingOff = true;
  context.folders.messageFolderPath = root;
  SilentProgress quiet;
  store::FolderCache cache(context, quiet);
  cache.fillCache(quiet, folder, folder.filename().string());
  for (const auto& entry : cache.messages) {
    const store::CachedMessage& m = entry.value;
    out << text::cp1252ToUtf8(fs::path(m.pathInReadCase()).filename().string()) << "\t"
        << (m.read ? "read" : "unread") << "\t" << text::plainText(m.size) << "\t" << text::cp1252ToUtf8(m.from)
        << "\t" << text::cp1252ToUtf8(m.subject) << "\n";
  }
  out << cache.count() << " messages, " << cache.headersRead() << " message files opened\n";
  cache.clear(false);
  return 0;
}

int run(const Arguments& args, std::ostream& out, std::ostream& err) {
  if (args.size() == 2 && args[0] == "--list-folders") return listFolders(args[1], out, err);
  if (args.size() == 1) return showFolder(args[0], fs::path(args[0]).parent_path(), out, err);
  if (args.size() == 3 && args[1] == "--root") return showFolder(args[0], args[2], out, err);
  err << "usage: vonel-inspect folder DIR [--root ROOT] | folder --list-folders ROOT\n";
  return 2;
}

const bool registered = registerCommand(
    {"folder", "DIR [--root ROOT] | --list-folders ROOT", run});

}  // namespace
}  // namespace vonel::inspect
