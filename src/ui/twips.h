#pragma once
// Window sizes in the settings file are twips (1/1440 inch); the screen's
// logical dots per inch turn them into pixels and back.
class QWidget;

namespace vonel::twips {

int fromPixels(const QWidget& widget, int pixels);
int toPixels(const QWidget& widget, int twips);

}  // namespace vonel::twips
