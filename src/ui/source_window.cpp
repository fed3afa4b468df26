#include "ui/source_window.h"

#include <QFontDatabase>
#include <QPlainTextEdit>

#include "app/qtext.h"
#include "core/files/file_text.h"
#include "core/files/path_text.h"

namespace vonel {

void showSourceWindow(const std::filesystem::path& file, QWidget* parent) {
  auto* view = new QPlainTextEdit(parent);
  view->setWindowFlag(Qt::Window);
  view->setAttribute(Qt::WA_DeleteOnClose);
  view->setObjectName("txtSource");
  view->setAccessibleName("Message source");
  view->setWindowTitle(toQString(files::textFromPath(file.filename())));
  view->setReadOnly(true);
  view->setLineWrapMode(QPlainTextEdit::NoWrap);
  view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  std::string text;
  try {
    text = files::loadTextFile(file);
  } catch (...) {
    text = "The message could not be read from " + files::textFromPath(file);
  }
  view->setPlainText(toQString(text));
  view->resize(760, 560);
  view->show();
}

}  // namespace vonel
