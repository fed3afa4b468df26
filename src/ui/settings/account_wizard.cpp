#include "ui/settings/account_wizard.h"

#include <QDir>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "app/qtext.h"
#include "core/files/file_info.h"
#include "ui/pictures.h"

namespace vonel {
namespace {

constexpr int kSidePicture = 64;
constexpr int kScanPicture = 32;
const QString kNext = QStringLiteral("Next >>");
const QString kFinish = QStringLiteral("Finish");
constexpr std::string_view kTitle = "Vonel";

QLabel* heading(const QString& text) {
  auto* label = new QLabel(text);
  QFont font = label->font();
  font.setBold(true);
  font.setPointSizeF(font.pointSizeF() * 1.3);
  label->setFont(font);
  label->setWordWrap(true);
  return label;
}

QLabel* picture(const QString& name, int size, const QString& accessibleName, const QWidget& screenOf) {
  auto* label = new QLabel;
  label->setPixmap(pictures::rendered(name, QSize(size, size), screenOf.devicePixelRatioF()));
  label->setAccessibleName(accessibleName);
  label->setAlignment(Qt::AlignTop);
  return label;
}

std::string answerOf(const QLineEdit* field) { return fromQString(field->text().trimmed()); }

std::string nativePath(const std::filesystem::path& file) {
  return fromQString(QDir::toNativeSeparators(QString::fromStdU16String(file.u16string())));
}

}  // namespace

AccountWizard::AccountWizard(AppContext& context, QWidget* parent)
    : QDialog(parent), ctx_(context), pages_(new QStackedWidget) {
  setObjectName("frmAccountWizard");
  setWindowTitle("Vonel setup wizard");

  auto* welcome = new QWidget;
  auto* welcomeLayout = new QVBoxLayout(welcome);
  welcomeLayout->addWidget(heading("Welcome to the Vonel setup wizard"));
  welcomeLayout->addStretch();
  pages_->addWidget(welcome);

  addQuestion("&Name that appears in the FROM: field", "txtName", "Please specify a user name");
  addQuestion("&Mail address", "txtEmail", "Please specify a valid email address, e.g. someone@example.com", true);
  addQuestion("&Incoming mail server", "txtPOP3", "Please specify an Inbound Mail Server");
  addQuestion("&Outgoing mail server", "txtSMTP", "Please specify an Outbound Mail Server");
  addQuestion("&User name", "txtUsername", "Please specify the username you log into your mail server with");
  addQuestion("&Descriptive name", "txtAccountName", "Please specify a title for this mail account", false,
              "Account 1");
  questions_[1].field->setPlaceholderText("someone@example.com");

  auto* done = new QWidget;
  auto* doneLayout = new QVBoxLayout(done);
  doneLayout->addWidget(heading("Congratulations, Vonel is now configured!"));
  auto* scanHint = new QHBoxLayout;
  scanHint->addWidget(picture("scan", kScanPicture, "Scan", *this));
  auto* hint = new QLabel(
      "When you close this wizard the Scanner window will appear. The first thing you should do is click the scan "
      "icon (as shown to the left).");
  hint->setWordWrap(true);
  scanHint->addWidget(hint, 1);
  doneLayout->addLayout(scanHint);
  doneLayout->addStretch();
  pages_->addWidget(done);

  back_ = new QPushButton("<< &Back");
  back_->setObjectName("cmdBack");
  next_ = new QPushButton(kNext);
  next_->setObjectName("cmdNext");
  next_->setDefault(true);
  auto* cancel = new QPushButton("Cancel");
  cancel->setObjectName("cmdCancel");
  for (QPushButton* button : {back_, cancel}) button->setAutoDefault(false);
  connect(back_, &QPushButton::clicked, this, &AccountWizard::onBack);
  connect(next_, &QPushButton::clicked, this, &AccountWizard::onNext);
  connect(cancel, &QPushButton::clicked, this, &AccountWizard::reject);

  auto* body = new QHBoxLayout;
  body->addWidget(picture("vonel", kSidePicture, "Vonel", *this));
  body->addWidget(pages_, 1);
  auto* rule = new QFrame;
  rule->setFrameShape(QFrame::HLine);
  rule->setFrameShadow(QFrame::Sunken);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(back_);
  buttons->addWidget(next_);
  buttons->addSpacing(fontMetrics().averageCharWidth() * 2);
  buttons->addWidget(cancel);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(body, 1);
  layout->addWidget(rule);
  layout->addLayout(buttons);

  // Wide enough that the page headings stay on one line.
  setMinimumSize(fontMetrics().averageCharWidth() * 90, fontMetrics().height() * 16);
  showPage(0);
}

void AccountWizard::addQuestion(const QString& label, const char* objectName, std::string_view refusal,
                                bool needsAt, const QString& answer) {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  auto* caption = new QLabel(label);
  caption->setWordWrap(true);
  auto* field = new QLineEdit(answer);
  field->setObjectName(objectName);
  caption->setBuddy(field);
  field->setAccessibleName(QString(label).remove('&'));
  layout->addWidget(caption);
  layout->addWidget(field);
  layout->addStretch();
  pages_->addWidget(page);
  questions_.push_back({field, refusal, needsAt});
}

FirstAccount AccountWizard::answers() const {
  auto answer = [this](std::size_t i) { return answerOf(questions_[i].field); };
  return {answer(0), answer(1), answer(2), answer(3), answer(4), answer(5)};
}

int AccountWizard::lastPage() const { return pages_->count() - 1; }

bool AccountWizard::acceptsAnswer(const Question& question) const {
  const QString answer = question.field->text().trimmed();
  return !answer.isEmpty() && (!question.needsAt || answer.contains('@'));
}

void AccountWizard::onNext() {
  const int page = pages_->currentIndex();
  if (page == lastPage()) {
    accept();
    return;
  }
  if (page > 0) {
    const Question& question = questions_[static_cast<std::size_t>(page - 1)];
    if (!acceptsAnswer(question)) {
      ctx_.prompt.ask(question.refusal, Buttons::Ok, kTitle);
      question.field->setFocus();
      return;
    }
  }
  showPage(page + 1);
}

void AccountWizard::onBack() {
  if (pages_->currentIndex() > 0) showPage(pages_->currentIndex() - 1);
}

void AccountWizard::showPage(int page) {
  pages_->setCurrentIndex(page);
  back_->setEnabled(page > 0);
  next_->setText(page == lastPage() ? kFinish : kNext);
  if (page > 0 && page < lastPage()) {
    QLineEdit* field = questions_[static_cast<std::size_t>(page - 1)].field;
    field->setFocus();
    field->selectAll();
  } else {
    next_->setFocus();
  }
}

void AccountWizard::reject() {
  ctx_.prompt.ask("If you want the wizard to run again you should exit Vonel,\rdelete the configuration file " +
                      nativePath(ctx_.settingsFile()) + "\rand restart Vonel.",
                  Buttons::Ok, kTitle);
  QDialog::reject();
}

bool runAccountWizard(AppContext& context, QWidget* parent) {
  AccountWizard wizard(context, parent);
  if (wizard.exec() != QDialog::Accepted) return false;
  const std::filesystem::path file = context.settingsFile();
  context.settings.loadSettings(file);
  storeFirstAccount(context.settings, wizard.answers());
  return context.settings.saveSettings(file) && files::fileExists(file);
}

}  // namespace vonel
