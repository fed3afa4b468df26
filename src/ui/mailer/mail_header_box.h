#pragma once
// The preview's header (picMailHeader): From, To and CC on one line and the
// Subject on the next. Its tool-tip carries the To address and the CC.
#include <QFrame>
#include <memory>

namespace vonel {

class PreviewField;
namespace message {
class Message;
}

class MailHeaderBox final : public QFrame {
  Q_OBJECT

 public:
  explicit MailHeaderBox(QWidget* parent = nullptr);
  ~MailHeaderBox() override;

  void showHeader(const message::Message& message);
  void clear();

 private:
  std::unique_ptr<PreviewField> from_;
  std::unique_ptr<PreviewField> to_;
  std::unique_ptr<PreviewField> cc_;
  std::unique_ptr<PreviewField> subject_;
};

}  // namespace vonel
