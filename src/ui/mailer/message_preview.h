#pragma once
// The mail window's preview of one message: header, body, tags and
// attachments. It reads the message file itself and keeps the message
// shown, for the actions on it. A file that is gone or unreadable gives an
// empty preview and a log line.
#include <QWidget>
#include <filesystem>
#include <memory>

class QLabel;
class QMenu;
class QStackedWidget;

namespace vonel {

class AppContext;
class AttachmentBar;
class MailHeaderBox;
class MailTextView;
class PreviewField;
namespace message {
class Message;
}

class MessagePreview final : public QWidget {
  Q_OBJECT

 public:
  explicit MessagePreview(AppContext& context, QWidget* parent = nullptr);
  ~MessagePreview() override;

  // Loads and shows the message. A big file first shows "Reading message ..."
  // and lets waiting events run; a preview asked for meanwhile wins.
  void showMessage(const std::filesystem::path& file);
  void clear();
  // The message shown, or nothing.
  const message::Message* current() const { return message_.get(); }
  // mnuAttach: "Save all attachments", then a line per attachment.
  QMenu* attachmentMenu() const;

 signals:
  // The 1-based MIME part of the attachment chosen by button or menu line.
  void attachmentChosen(int part);
  void saveAllAttachmentsChosen();

 private:
  void hideBody(const QString& notice);
  void showBody();
  void display(const message::Message& message);
  void displayFooter(const message::Message& message);

  AppContext& ctx_;
  std::unique_ptr<message::Message> message_;
  unsigned generation_ = 0;  // counts previews, so that one overtaken while yielding gives up

  MailHeaderBox* header_;
  AttachmentBar* attachments_;
  QStackedWidget* body_;
  MailTextView* text_;
  QLabel* hider_;
  QWidget* footer_;
  std::unique_ptr<PreviewField> tags_;
};

}  // namespace vonel
