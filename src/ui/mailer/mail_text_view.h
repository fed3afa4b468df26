#pragma once
// The preview's body: plain text, read-only, with web and mail addresses
// underlined in blue. Mail is untrusted, so nothing in it is ever loaded,
// run or followed: the text goes in as plain text, marks are character
// formats (no anchors), and every resource request gets nothing.
#include <QTextBrowser>
#include <string_view>
#include <vector>

class QTextDocument;

namespace vonel {

class MailTextView final : public QTextBrowser {
  Q_OBJECT

 public:
  explicit MailTextView(QWidget* parent = nullptr);

  // Shows the text (Windows-1252 bytes) from its top and marks its links.
  void showText(std::string_view text);

  QVariant loadResource(int type, const QUrl& name) override;

 private:
  // Underlines and colours the links of `text` in the document made of it,
  // which has a line break added at each of `breaks`.
  void markLinks(QTextDocument& shown, std::string_view text, const std::vector<std::size_t>& breaks);
};

}  // namespace vonel
