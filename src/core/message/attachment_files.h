#pragma once
// Parts and attachments written to disk: decoded exactly, so that a saved
// picture or archive opens, under a name that can't reach outside the folder
// it is written to. Names from mail are untrusted.
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/log/log.h"
#include "core/message/message.h"
#include "core/interaction/prompt.h"

namespace vonel::message {

namespace fs = std::filesystem;

// The bytes a part stands for: base64 and quoted-printable undone exactly,
// with no fill and nothing trimmed; any other encoding as it stands.
std::string decodedPartBytes(std::string_view data, std::string_view encoding);

// Replaces the file with the part's decoded bytes, through a temporary file,
// so a failed write leaves any old file whole. Throws AppError.
void writeFile(const fs::path& path, std::string_view data, std::string_view encoding);

// A plain file name from any text: no folders, drive letters, control
// characters, characters Windows forbids, leading or trailing dots, or device
// names (CON, NUL, COM1, LPT1... with or without an extension); not too long
// for a file system; "attachment" when nothing is left.
std::string safeAttachmentName(std::string_view name);

// Where an attachment of that name goes in the folder: always inside it.
fs::path attachmentPath(const fs::path& folder, std::string_view filename);

// Writes the part under its safe name in the folder and returns the file, or
// nothing when that failed (logged under modAttachments when there is a log).
std::optional<fs::path> saveAttachment(const MimePart& part, const fs::path& folder, Log* log);

// Every named part of the message, in order, into the folder; a part that
// fails is logged and the others are still written. Returns the files written.
std::vector<fs::path> saveAllAttachmentsNoUserInput(const Message& message, const fs::path& folder,
                                                    Log* log);

// The save-file dialogue the saving of attachments asks through; the window
// shows a real one, tests answer it.
class SaveFileChooser {
 public:
  virtual ~SaveFileChooser() = default;
  // The file chosen, or nothing when the user cancelled.
  virtual std::optional<fs::path> chooseSaveFile(std::string_view title, const fs::path& proposal) = 0;
};

// Saves the named parts of a message. With `ask`, a dialogue starting in
// `folder` proposes the one attachment's name and that part goes to the file
// chosen, or, for several, takes the folder of the file chosen for all;
// without, they go into `folder`. Several end in a box telling the folder.
// Returns the files written; a cancelled dialogue writes nothing.
std::vector<fs::path> saveAllAttachments(const Message& message, bool ask, const fs::path& folder,
                                         SaveFileChooser& chooser, Prompt& prompt, Log* log);

// True for an attachment that is itself a message, to be opened as one.
bool isAttachedMessage(std::string_view filename);

// Writes the 1-based part into the folder so that the system can open it: a
// web page takes every named part of the message with it, for its pictures.
// Notes the folder in attachmentsFolder and returns the part's file.
std::optional<fs::path> writeAttachmentToOpen(Message& message, std::size_t index, const fs::path& folder,
                                              Log* log);

}  // namespace vonel::message
