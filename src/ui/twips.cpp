#include "ui/twips.h"

#include <QWidget>
#include <cmath>

namespace vonel::twips {
namespace {

constexpr double kTwipsPerInch = 1440.0;

double logicalDpi(const QWidget& widget) { return widget.logicalDpiX() > 0 ? widget.logicalDpiX() : 96.0; }

}  // namespace

int fromPixels(const QWidget& widget, int pixels) {
  return static_cast<int>(std::lround(pixels * kTwipsPerInch / logicalDpi(widget)));
}

int toPixels(const QWidget& widget, int twips) {
  return static_cast<int>(std::lround(twips * logicalDpi(widget) / kTwipsPerInch));
}

}  // namespace vonel::twips
