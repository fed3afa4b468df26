#include "ui/mailer/mail_header_box.h"

#include <QBoxLayout>

#include "app/qtext.h"
#include "core/message/address.h"
#include "core/message/message.h"
#include "ui/mailer/preview_field.h"

namespace vonel {

MailHeaderBox::MailHeaderBox(QWidget* parent) : QFrame(parent) {
  setObjectName("picMailHeader");
  setAccessibleName("Message header");
  setFrameShape(QFrame::StyledPanel);
  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins(6, 4, 6, 4);
  lines->setSpacing(2);
  auto* addresses = new QHBoxLayout;
  addresses->setSpacing(0);
  from_ = std::make_unique<PreviewField>("From: ", "lblFrom", *addresses, 0);
  to_ = std::make_unique<PreviewField>(" To: ", "lblTo", *addresses, 0);
  cc_ = std::make_unique<PreviewField>(" CC: ", "lblCC", *addresses, 0);
  addresses->addStretch(1);
  lines->addLayout(addresses);
  auto* subjectLine = new QHBoxLayout;
  subjectLine->setSpacing(0);
  subject_ = std::make_unique<PreviewField>("Subject: ", "lblSubject", *subjectLine, 1);
  lines->addLayout(subjectLine);
  clear();
}

MailHeaderBox::~MailHeaderBox() = default;

void MailHeaderBox::showHeader(const message::Message& message) {
  from_->setValue(toQString(message.from.empty() ? message.returnPath : message.from));
  const std::string& to = message.toEmail().empty() ? message.xEnvelopeTo : message.toEmail();
  to_->setValue(toQString(to));
  std::string tip = message::extractEmail(to);
  if (!message.cc.empty()) tip += " Cc: " + message.cc;
  setToolTip(toQString(tip));
  cc_->setValue(toQString(message.cc));
  cc_->setVisible(!message.cc.empty());
  subject_->setValue(toQString(message.subject));
}

void MailHeaderBox::clear() {
  for (PreviewField* field : {from_.get(), to_.get(), cc_.get(), subject_.get()}) field->setValue({});
  cc_->setVisible(false);
  setToolTip({});
}

}  // namespace vonel
