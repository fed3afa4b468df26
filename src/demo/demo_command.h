#pragma once
// `vonel --demo`: the whole program on sample mail, without an account and
// leaving nothing behind. This process makes and fills a temporary home,
// runs the sandbox's servers, and starts the program itself, unchanged, on
// that home; when the program ends, or this process is told to stop, the
// home goes. A program whose parent is killed dies with it, and the next
// demo removes the home that was left.
#include <QDate>
#include <QString>
#include <QStringList>

namespace vonel::demo {

struct DemoOptions {
  bool requested = false;
  bool keep = false;  // the home stays and its path is printed
  QDate day;          // the day the sample mail is dated before
  QStringList programArguments;  // the rest, for the program
  QString error;
};

// Takes --demo, --demo-date YYYY-MM-DD and --keep out of the arguments (the
// first is the program's name); the day is today unless given.
DemoOptions takeDemoOptions(const QStringList& arguments);
QString demoHelp();

// Needs no application object; makes its own.
int runDemo(int argc, char** argv, const DemoOptions& options);

}  // namespace vonel::demo
