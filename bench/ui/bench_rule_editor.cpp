// Opens the rule editor on 2,000 server rules and prints how long until it is
// shown, then how long a change of row takes: the form is stored (as it was,
// and after an edit, which hands the set to the rule engine) and the next
// rule shown.
#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <fstream>

#include "core/context/app_context.h"
#include "core/rules/rule_engine.h"
#include "ui/rules/rule_editor.h"

namespace {

constexpr int kRules = 2000;
constexpr int kRowChanges = 300;

void writeRules(const std::filesystem::path& file) {
  std::ofstream out(file, std::ios::binary);
  for (int i = 0; i < kRules; ++i) {
    out << "Filtername, Rule number " << i << " against a long run of cheap pills\r\n";
    for (const char* field : {"Subject:", "From:", "To:", "All Headers"}) {
      out << "FilterField, " << field << "\r\nFilterComparison, cnt\r\nFilterString, word" << i << "\r\n";
    }
    out << "FilterAction, 100\r\nFilterDest, \r\nFilterStop, -1\r\nFilter_Category,  0 \r\n";
  }
}

void pressDown(QListView* list) {
  QKeyEvent press(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
  QApplication::sendEvent(list, &press);
  QApplication::processEvents();
}

struct RowChanges {
  double average = 0;
  qint64 longest = 0;
};

// With `edit`, a letter is typed into the first condition before each change.
RowChanges timeRowChanges(vonel::RuleEditor& editor, bool edit) {
  auto* list = editor.findChild<QListView*>("ListView1");
  auto* text = editor.findChild<QLineEdit*>("txtText_0");
  QElapsedTimer total;
  qint64 elapsed = 0;
  RowChanges figures;
  for (int i = 0; i < kRowChanges; ++i) {
    if (edit) text->setText(text->text() + "x");
    total.start();
    pressDown(list);
    const qint64 took = total.nsecsElapsed();
    elapsed += took;
    figures.longest = std::max(figures.longest, took);
  }
  figures.average = static_cast<double>(elapsed) / kRowChanges / 1e6;
  figures.longest /= 1000000;
  return figures;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QTemporaryDir dir;
  const std::filesystem::path home = dir.path().toStdString();
  vonel::FixedClock clock{vonel::text::DateTime{2026, 11, 23, 8, 5, 9}};
  vonel::ScriptedPrompt prompt;
  vonel::AppContext context{clock, prompt, vonel::AppInfo{"Vonel", "1", "os", "/", home}};
  context.folders.readMessageFolder();
  context.folders.readDataFolder();
  writeRules(context.folders.dataFolderPath / "Rules.txt");
  vonel::rules::RuleEngine engine(context);
  engine.reloadFilters(false);

  QElapsedTimer open;
  open.start();
  vonel::RuleEditor editor(context, engine, false);
  editor.show();
  QApplication::processEvents();
  const qint64 opened = open.elapsed();

  const RowChanges unchanged = timeRowChanges(editor, false);
  const RowChanges edited = timeRowChanges(editor, true);
  std::printf("rule editor with %d rules opens: %lld ms\n", kRules, static_cast<long long>(opened));
  std::printf("row change, form unchanged: %.2f ms average, %lld ms longest\n", unchanged.average,
              static_cast<long long>(unchanged.longest));
  std::printf("row change after an edit: %.2f ms average, %lld ms longest\n", edited.average,
              static_cast<long long>(edited.longest));
  return 0;
}
