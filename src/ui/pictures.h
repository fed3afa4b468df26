#pragma once
// The program's own pictures, drawn as SVG and kept in the resources
// (src/ui/resources/icons): named by file, without the ".svg".
#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <QString>

namespace vonel::pictures {

// An icon that draws itself at whatever size and scale it is asked for.
QIcon icon(const QString& name);

// The picture drawn at `size` logical pixels for a screen of
// `devicePixelRatio`, so that it stays sharp on a high-density screen.
QPixmap rendered(const QString& name, QSize size, qreal devicePixelRatio);

}  // namespace vonel::pictures
