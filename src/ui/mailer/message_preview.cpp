#include "ui/mailer/message_preview.h"

#include <QApplication>
#include <QBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QStackedWidget>

#include "app/qtext.h"
#include "core/context/app_context.h"
#include "core/files/file_info.h"
#include "core/log/log_places.h"
#include "core/message/message.h"
#include "core/message/message_file.h"
#include "core/message/plain_text.h"
#include "core/message/preview_body.h"
#include "ui/mailer/attachment_bar.h"
#include "ui/mailer/mail_header_box.h"
#include "ui/mailer/mail_text_view.h"
#include "ui/mailer/preview_field.h"

namespace vonel {
namespace {

constexpr std::uintmax_t kBigMessage = 100000;
constexpr std::string_view kProcedure = "MessagePreview";

}  // namespace

MessagePreview::MessagePreview(AppContext& context, QWidget* parent)
    : QWidget(parent),
      ctx_(context),
      header_(new MailHeaderBox),
      attachments_(new AttachmentBar),
      body_(new QStackedWidget),
      text_(new MailTextView),
      hider_(new QLabel),
      footer_(new QFrame) {
  setObjectName("MessagePreview");
  setAccessibleName("Message preview");
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  layout->addWidget(header_);
  layout->addWidget(attachments_);

  hider_->setObjectName("txtHider");
  hider_->setAccessibleName("Message text");
  hider_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  hider_->setMargin(6);
  hider_->setAutoFillBackground(true);
  hider_->setBackgroundRole(QPalette::Base);
  body_->addWidget(text_);
  body_->addWidget(hider_);
  layout->addWidget(body_, 1);

  footer_->setObjectName("picMailFooter");
  footer_->setAccessibleName("Message tags");
  auto* footerLine = new QHBoxLayout(footer_);
  footerLine->setContentsMargins(6, 2, 6, 2);
  footerLine->setSpacing(0);
  tags_ = std::make_unique<PreviewField>("Tags: ", "lblTags", *footerLine, 1);
  layout->addWidget(footer_);

  connect(attachments_, &AttachmentBar::attachmentChosen, this, &MessagePreview::attachmentChosen);
  connect(attachments_, &AttachmentBar::saveAllChosen, this, &MessagePreview::saveAllAttachmentsChosen);
  clear();
}

MessagePreview::~MessagePreview() = default;

QMenu* MessagePreview::attachmentMenu() const { return attachments_->menu(); }

void MessagePreview::showMessage(const std::filesystem::path& file) {
  const unsigned generation = ++generation_;
  auto facts = files::fileFactsOf(file);
  if (facts && facts->size > kBigMessage) {
    hideBody("Reading message ...");
    const QPointer<MessagePreview> self(this);
    QApplication::processEvents();
    if (!self || generation != generation_) return;
    facts = files::fileFactsOf(file);  // it may have gone meanwhile
  } else {
    hideBody({});
  }
  attachments_->clearAttachments();
  if (!facts) {
    ctx_.log.addAction("Message file not found: " + file.string(), kProcedure, log_places::kMailerModule);
    clear();
    return;
  }
  message_ = std::make_unique<message::Message>(message::readMessageFull(file, ctx_.log));
  display(*message_);
  showBody();
}

void MessagePreview::clear() {
  ++generation_;
  message_.reset();
  header_->clear();
  tags_->setValue({});
  footer_->setToolTip({});
  attachments_->clearAttachments();
  text_->showText({});
  showBody();
}

void MessagePreview::hideBody(const QString& notice) {
  hider_->setText(notice);
  body_->setCurrentWidget(hider_);
}

void MessagePreview::showBody() { body_->setCurrentWidget(text_); }

void MessagePreview::display(const message::Message& message) {
  header_->showHeader(message);
  displayFooter(message);
  // The text a reader sees is the message's plain text; the stripped body
  // the rules read has lost its line ends, which the preview keeps.
  text_->showText(message::previewBody(message::extractPlainMessage(message, ctx_)));
  attachments_->showAttachments(attachmentEntries(message));
}

void MessagePreview::displayFooter(const message::Message& message) {
  const bool none = message.tags().empty();
  tags_->setValue(none ? QString("None") : toQString(message.tags()));
  footer_->setToolTip(none ? QString("No tags") : QString());
}

}  // namespace vonel
