#pragma once
// The window that tells the user of an error and lets them send a report of
// it, with the log, to the bug report mailbox.
#include <QDialog>
#include <string>
#include <string_view>

#include "core/log/error_report.h"

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace vonel {

class AppContext;

class ErrorReportWindow final : public QDialog {
  Q_OBJECT

 public:
  explicit ErrorReportWindow(AppContext& context, QWidget* parent = nullptr);

  // Puts the error's text, and its details below it, into the window.
  void showError(std::string_view text, std::string_view details = {});

  // The report as it would be sent, with what the window holds now.
  std::string reportText() const;
  // "FullLog.txt" in the system's temporary folder: the report as a file.
  static QString reportFile();

 private:
  void onEmail();
  void onViewReport();
  void onViewLog();
  void onShowComments();
  void onHelp();
  ErrorReport report() const;
  void writeReportFile();

  AppContext& context_;
  std::string address_;
  std::string errorText_;
  std::string logText_;
  QPlainTextEdit* txtError_;
  QPlainTextEdit* txtLog_;
  QLabel* lblUserMessage_;
  QPlainTextEdit* txtUserMessage_;
  QDialog* reportView_ = nullptr;
};

// Shows the window modally over `parent` with the error's text and details.
void showErrorReportWindow(AppContext& context, std::string_view text, std::string_view details, QWidget* parent);

}  // namespace vonel
