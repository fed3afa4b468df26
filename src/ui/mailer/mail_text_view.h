#pragma once
// The preview's body: plain text, read-only, with web and mail addresses
// underlined in blue. Mail is untrusted, so nothing in it is ever loaded,
// run or followed: the text goes in as plain text, marks are character
// formats (no anchors), and every resource request gets nothing.
#include <QTextBrowser>
#include <string_view>

namespace vonel {

class MailTextView final : public QTextBrowser {
  Q_OBJECT

 public:
  explicit MailTextView(QWidget* parent = nullptr);

  // Shows the text (Windows-1252 bytes) from its top and marks its links.
  void showText(std::string_view text);

  QVariant loadResource(int type, const QUrl& name) override;

 private:
  void underlineLinks(std::string_view text);
};

}  // namespace vonel
