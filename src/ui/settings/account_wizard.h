#pragma once
// The account wizard of a first start: a welcome page, one page for each
// question about the first mail account, and a closing page. Next refuses a
// page whose answer is missing, with a box that says what it needs.
#include <QDialog>
#include <string_view>
#include <vector>

#include "core/context/app_context.h"
#include "core/settings/first_account.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;

namespace vonel {

class AccountWizard : public QDialog {
  Q_OBJECT

 public:
  explicit AccountWizard(AppContext& context, QWidget* parent = nullptr);

  // The answers as they stand, trimmed.
  FirstAccount answers() const;

  // Cancel, Escape and the close box all end here, after the box that says
  // how to see the wizard again.
  void reject() override;

 private:
  struct Question {
    QLineEdit* field;
    std::string_view refusal;  // the box's text when the answer is missing or bad
    bool needsAt;
  };

  void addQuestion(const QString& label, const char* objectName, std::string_view refusal, bool needsAt = false,
                   const QString& answer = {});
  void onNext();
  void onBack();
  void showPage(int page);
  int lastPage() const;
  bool acceptsAnswer(const Question& question) const;

  AppContext& ctx_;
  QStackedWidget* pages_;
  QPushButton* back_;
  QPushButton* next_;
  std::vector<Question> questions_;  // question i is on page i + 1
};

// Shows the wizard modally and, on Finish, writes account 0 into the settings
// file of the install folder. True when the file was written.
bool runAccountWizard(AppContext& context, QWidget* parent);

}  // namespace vonel
