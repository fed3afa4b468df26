// How long the demo's home takes to make: the folder, the sample mail, the
// settings, rules and lists, and the filter trained on the stored mail
// (goal: under 300 ms). Prints min, median and max of N homes.
// Usage: bench_demo_home [N]   (default: 20)
#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "demo/demo_home.h"

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  const int count = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20;
  QTemporaryDir temporary;
  std::vector<double> made;
  for (int i = 0; i < count; ++i) {
    const auto start = std::chrono::steady_clock::now();
    QString error;
    const auto home = vonel::demo::DemoHome::create(temporary.path().toStdString(), error);
    if (!home) {
      std::fprintf(stderr, "no home: %s\n", qPrintable(error));
      return 1;
    }
    home->fill({1100, 2500}, QDate(2026, 1, 15));
    made.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    home->remove();
  }
  std::sort(made.begin(), made.end());
  std::printf("home made (folder, mail, settings, rules, lists, training): min %.1f ms, median %.1f ms, max %.1f ms "
              "over %d\n", made.front(), made[made.size() / 2], made.back(), count);
  return 0;
}
