#pragma once
// The previewed message's attachments (Toolbar2): a button for each, and the
// same as lines of the mnuAttach menu, which the bar opens as its context
// menu. Choosing one only reports it: what opens or saves it lies elsewhere.
#include <QToolBar>
#include <string>
#include <vector>

class QMenu;

namespace vonel {

namespace message {
class Message;
}

struct AttachmentEntry {
  int part;  // 1-based MIME part of the message
  std::string name;
  std::string menuLine;  // "name (1.5kb)"
};

// The named parts of the message, in order.
std::vector<AttachmentEntry> attachmentEntries(const message::Message& message);

class AttachmentBar final : public QToolBar {
  Q_OBJECT

 public:
  explicit AttachmentBar(QWidget* parent = nullptr);

  // A button and a menu line per entry; the bar hides when there are none.
  void showAttachments(const std::vector<AttachmentEntry>& entries);
  // Hides the buttons and empties the menu down to its first entry.
  void clearAttachments();
  QMenu* menu() const { return menu_; }

 signals:
  void attachmentChosen(int part);
  void saveAllChosen();

 private:
  void onContextMenu(const QPoint& at);

  QMenu* menu_;
};

}  // namespace vonel
