#include "ui/scanner/scanner_window.h"

#ifdef VONEL_HAVE_SOUND
#include <QSoundEffect>
#include <QUrl>
#endif

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QMessageBox>
#include <QPainter>
#include <QScreen>
#include <QSplashScreen>
#include <QStatusBar>
#include <QSystemTrayIcon>
#include <QTreeWidget>

#include "app/qtext.h"
#include "core/rules/status_word.h"
#include "core/text/numbers.h"

namespace vonel {
namespace {

constexpr int kTwipsPerInch = 1440;
// Where a server's row keeps the account title it is found by.
constexpr int kServerTitleRole = Qt::UserRole + 1;

QPixmap splashPicture() {
  QPixmap picture(360, 160);
  picture.fill(QColor(32, 64, 112));
  QPainter painter(&picture);
  painter.setPen(Qt::white);
  QFont font = painter.font();
  font.setPointSize(28);
  font.setBold(true);
  painter.setFont(font);
  painter.drawText(picture.rect().adjusted(0, 0, 0, -40), Qt::AlignCenter, QStringLiteral("Vonel"));
  return picture;
}

QIcon trayPicture(TrayPicture kind) {
  QPixmap picture(32, 32);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(kind == TrayPicture::Error ? QColor(176, 32, 32) : QColor(32, 64, 112));
  painter.setPen(Qt::NoPen);
  painter.drawEllipse(picture.rect());
  QFont font = painter.font();
  font.setBold(true);
  font.setPixelSize(kind == TrayPicture::SmallS ? 12 : 22);
  painter.setFont(font);
  painter.setPen(Qt::white);
  painter.drawText(picture.rect(), Qt::AlignCenter, kind == TrayPicture::Error ? QStringLiteral("!") : QStringLiteral("S"));
  return QIcon(picture);
}

}  // namespace

ScannerWindow::ScannerWindow() : list_(new QTreeWidget(this)) {
  setObjectName("frmMain");
  setWindowTitle("Vonel");
  list_->setObjectName("ListServerMail");
  list_->setRootIsDecorated(false);
  list_->setHeaderLabels({"#", "Account", "Status", "Score", "From", "Subject"});
  setCentralWidget(list_);

  auto* fileMenu = menuBar()->addMenu("&File");
  auto* exit = fileMenu->addAction("E&xit");
  exit->setObjectName("mnuExit");
  connect(exit, &QAction::triggered, this, &ScannerWindow::onExitTriggered);
  statusBar()->setObjectName("StatusBar1");
}

ScannerWindow::~ScannerWindow() = default;

void ScannerWindow::onExitTriggered() {
  if (onExit && onExit()) QApplication::quit();
}

void ScannerWindow::showSplash() {
  if (!splash_) splash_ = std::make_unique<QSplashScreen>(splashPicture());
  splash_->show();
}

void ScannerWindow::splashStatus(std::string_view stage) {
  if (splash_) splash_->showMessage(toQString(stage), Qt::AlignBottom | Qt::AlignHCenter, Qt::white);
}

void ScannerWindow::hideSplash() {
  if (splash_) splash_->hide();
}

bool ScannerWindow::runAccountWizard() {
  QMessageBox::information(nullptr, "Vonel",
                           "No mail account is set up yet. Vonel starts with empty settings; "
                           "accounts can be added to Vonel.ini in its home folder.");
  return true;
}

void ScannerWindow::setBusy(bool busy) {
  if (busy) QApplication::setOverrideCursor(Qt::WaitCursor);
  else QApplication::restoreOverrideCursor();
}

void ScannerWindow::setupListView() { list_->clear(); }

void ScannerWindow::showTicketButton(bool) {}

void ScannerWindow::showTrayIcon(std::string_view tip) {
  if (!QSystemTrayIcon::isSystemTrayAvailable()) return;
  if (!tray_) {
    tray_ = new QSystemTrayIcon(trayPicture(TrayPicture::LargeS), this);
    connect(tray_, &QSystemTrayIcon::activated, this, [this] { showMain(); });
  }
  tray_->setToolTip(toQString(tip));
  tray_->show();
}

void ScannerWindow::removeTrayIcon() {
  if (tray_) tray_->hide();
}

void ScannerWindow::setStatusText(std::string_view text) { statusBar()->showMessage(toQString(text)); }

void ScannerWindow::showTrayError(std::string_view text) {
  if (tray_) tray_->showMessage("Vonel", toQString(text), QSystemTrayIcon::Warning);
}

void ScannerWindow::showTrayPicture(TrayPicture picture, std::string_view tip) {
  if (!tray_) return;
  tray_->setIcon(trayPicture(picture));
  tray_->setToolTip(toQString(tip));
}

void ScannerWindow::playSound(const std::filesystem::path& wave) {
#ifdef VONEL_HAVE_SOUND
  if (!std::filesystem::exists(wave)) return;
  auto* effect = static_cast<QSoundEffect*>(chime_);
  if (!effect) chime_ = effect = new QSoundEffect(this);
  effect->setSource(QUrl::fromLocalFile(QString::fromStdString(wave.string())));
  effect->play();
#else
  (void)wave;
#endif
}

// A server's row spans the list: its title, and what the pass found there.
void ScannerWindow::addServerToLists(const std::string& title) {
  auto* row = new QTreeWidgetItem(list_);
  row->setData(0, kServerTitleRole, toQString(title));
  row->setText(0, toQString(title));
  row->setFirstColumnSpanned(true);
}

void ScannerWindow::setServerStatus(const std::string& title, std::string_view text) {
  if (QTreeWidgetItem* row = serverRow(title)) row->setText(0, toQString(title) + ": " + toQString(text));
}

QTreeWidgetItem* ScannerWindow::serverRow(const std::string& title) const {
  const QString key = toQString(title);
  for (int i = list_->topLevelItemCount() - 1; i >= 0; --i) {
    QTreeWidgetItem* row = list_->topLevelItem(i);
    if (row->data(0, kServerTitleRole).toString() == key) return row;
  }
  return nullptr;
}

void ScannerWindow::showConnectionError(std::string_view text) {
  QMessageBox::warning(this, "Vonel", toQString(text));
}

void ScannerWindow::addServerMessage(const message::Message& m, long number, const std::string& accountTitle) {
  auto* row = new QTreeWidgetItem(list_);
  row->setText(0, QString::number(number));
  row->setText(1, toQString(accountTitle));
  row->setText(2, toQString(rules::statusWord(m)));
  row->setText(3, toQString(text::plainText(m.bayes)));
  row->setText(4, toQString(m.from));
  row->setText(5, m.ignored ? QStringLiteral("N/A") : toQString(m.subject));
  // Colours are kept as blue-green-red numbers.
  const QColor colour(m.colour & 0xFF, (m.colour >> 8) & 0xFF, (m.colour >> 16) & 0xFF);
  for (int column = 0; column < 6; ++column) row->setForeground(column, colour);
}

void ScannerWindow::setupMenus() {}

void ScannerWindow::switchToMailer() {}

int ScannerWindow::twipsPerPixel() const {
  const int dpi = logicalDpiX() > 0 ? logicalDpiX() : 96;
  return kTwipsPerInch / dpi;
}

WindowGeometry ScannerWindow::screenTwips() const {
  const QScreen* screen = this->screen() ? this->screen() : QGuiApplication::primaryScreen();
  if (!screen) return {};
  const QSize size = screen->availableGeometry().size();
  return {size.width() * twipsPerPixel(), size.height() * twipsPerPixel()};
}

WindowGeometry ScannerWindow::geometryTwips() const {
  const WindowState state = isMaximized()   ? WindowState::Maximised
                            : isMinimized() ? WindowState::Minimised
                                            : WindowState::Normal;
  return {width() * twipsPerPixel(), height() * twipsPerPixel(), state};
}

void ScannerWindow::maximise() { setWindowState(windowState() | Qt::WindowMaximized); }

void ScannerWindow::resizeTwips(int widthTwips, int heightTwips) {
  resize(widthTwips / twipsPerPixel(), heightTwips / twipsPerPixel());
}

void ScannerWindow::showMain() {
  show();
  raise();
  activateWindow();
}

void ScannerWindow::hideMain() { hide(); }

void ScannerWindow::closeOtherWindows(const std::function<void(const std::string&)>& onClose) {
  const auto windows = QApplication::topLevelWidgets();
  for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
    QWidget* window = *it;
    if (window == this || !window->isVisible()) continue;
    onClose(fromQString(window->objectName().isEmpty() ? window->windowTitle() : window->objectName()));
    window->close();
  }
}

void ScannerWindow::pumpEvents() { QApplication::processEvents(); }

void ScannerWindow::closeEvent(QCloseEvent* event) {
  if (event->spontaneous()) {
    hide();
    event->ignore();
    return;
  }
  QMainWindow::closeEvent(event);
}

}  // namespace vonel
