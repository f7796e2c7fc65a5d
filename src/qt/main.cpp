#include <QApplication>
#include <clocale>
#include <cstdio>
#include <memory>

#include "cli/ScriptRecorder.h"
#include "commands/CommandRows.h"
#include "qt/Arguments.h"
#include "qt/MainWindow.h"
#include "qt/QtFrontEnd.h"
#include "qt/QtText.h"
#include "shell/CorvaneApp.h"

namespace corvane {

namespace {

constexpr int kWrongUsage = 64;

std::vector<std::string> Words(int argc, char** argv) {
  return {argv + 1, argv + argc};
}

// The program from its start-up to the end of the event loop.
int RunWorkbench(QApplication& application, const Arguments& arguments) {
  QtFrontEnd window;
  std::unique_ptr<ScriptRecorder> recorder;
  if (!arguments.record.empty()) {
    recorder = std::make_unique<ScriptRecorder>(window, arguments.record);
    if (!recorder->IsGood()) {
      std::fprintf(stderr, "corvane: %s can't be written.\n", arguments.record.c_str());
      return EXIT_FAILURE;
    }
  }
  const InstalledFrontEnd installed(recorder ? static_cast<FrontEnd&>(*recorder) : window);

  CCorvaneApp app(CommandRows(), UserProfilePath());
  CMainWindow mainWindow(app);
  window.SetMainWindow(&mainWindow);
  if (recorder) {
    mainWindow.onActivation = [&](const std::string& path, const std::string& title) {
      recorder->NoteActivation(path, title);
    };
  }
  int status = EXIT_FAILURE;
  if (app.InitInstance(arguments.file)) {
    mainWindow.Refresh();
    mainWindow.show();
    status = application.exec();
  }
  app.ExitInstance();
  window.SetMainWindow(nullptr);
  return status;
}

}  // namespace

}  // namespace corvane

int main(int argc, char** argv) {
  using namespace corvane;
  const Arguments first = ReadArguments(Words(argc, argv));
  if (first.help || first.version) {  // these need no display
    std::fputs(first.help ? kUsage : "corvane 1.0\n", stdout);
    return EXIT_SUCCESS;
  }

  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  QApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
  QApplication application(argc, argv);  // takes the toolkit's own options out
  std::setlocale(LC_ALL, "C");           // Qt has set the desktop's; numbers stay in "C"
  QApplication::setApplicationName("corvane");

  const Arguments arguments = ReadArguments(Words(argc, argv));
  if (!arguments.problem.empty()) {
    std::fprintf(stderr, "corvane: %s\n%s", arguments.problem.c_str(), kUsage);
    return kWrongUsage;
  }
  return RunWorkbench(application, arguments);
}
