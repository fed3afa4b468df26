#include "ui/dialog_prompt.h"

#include <QMessageBox>

#include "app/qtext.h"
#include "ui/errors/error_report_window.h"

namespace vonel {

Answer DialogPrompt::ask(std::string_view text, Buttons buttons, std::string_view title) {
  QMessageBox box(parent_);
  box.setWindowTitle(title.empty() ? QStringLiteral("Vonel") : toQString(title));
  box.setText(toQString(text));
  switch (buttons) {
    case Buttons::Ok: box.setStandardButtons(QMessageBox::Ok); break;
    case Buttons::OkCancel: box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel); break;
    case Buttons::YesNo: box.setStandardButtons(QMessageBox::Yes | QMessageBox::No); break;
    case Buttons::YesNoCancel:
      box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
      break;
    case Buttons::RetryCancel: box.setStandardButtons(QMessageBox::Retry | QMessageBox::Cancel); break;
  }
  switch (box.exec()) {
    case QMessageBox::Yes: return Answer::Yes;
    case QMessageBox::No: return Answer::No;
    case QMessageBox::Retry: return Answer::Retry;
    case QMessageBox::Cancel: return Answer::Cancel;
    default: return Answer::Ok;
  }
}

void DialogPrompt::showError(std::string_view text, std::string_view details) {
  if (context_ != nullptr) {
    showErrorReportWindow(*context_, text, details, parent_);
    return;
  }
  QMessageBox box(QMessageBox::Warning, QStringLiteral("Vonel"), QStringLiteral("An error has ocurred:"),
                  QMessageBox::Ok, parent_);
  box.setInformativeText(toQString(text));
  if (!details.empty()) box.setDetailedText(toQString(details));
  box.exec();
}

}  // namespace vonel
