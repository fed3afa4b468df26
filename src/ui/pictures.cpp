#include "ui/pictures.h"

#include <QPainter>
#include <QSvgRenderer>

// The resources live in the static vonel_ui library; a program linking it
// keeps them only when something calls their initialiser.
static void initialisePictureResources() { Q_INIT_RESOURCE(vonel); }

namespace vonel::pictures {
namespace {

QString resourcePath(const QString& name) {
  static const bool initialised = (initialisePictureResources(), true);
  Q_UNUSED(initialised);
  return QStringLiteral(":/icons/%1.svg").arg(name);
}

}  // namespace

QIcon icon(const QString& name) { return QIcon(resourcePath(name)); }

QPixmap rendered(const QString& name, QSize size, qreal devicePixelRatio) {
  QSvgRenderer renderer(resourcePath(name));
  QPixmap picture(size * devicePixelRatio);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  renderer.render(&painter);
  painter.end();
  picture.setDevicePixelRatio(devicePixelRatio);
  return picture;
}

}  // namespace vonel::pictures
