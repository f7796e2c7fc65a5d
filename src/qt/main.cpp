#include <QApplication>
#include <algorithm>
#include <clocale>
#include <csignal>
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

// Whether there is a display to show a window on, or a platform was chosen that needs none.
bool HasDisplay(const std::vector<std::string>& words) {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    if (!qEnvironmentVariableIsEmpty(name)) return true;
  }
  return std::any_of(words.begin(), words.end(), [](const std::string& word) {
    return word == "-platform" || word == "--platform" || word == "-display" || word == "--display";
  });
}

int TellWrongUsage(const Arguments& arguments) {
  std::fprintf(stderr, "corvane: %s\n%s", arguments.problem.c_str(), kUsage);
  return kWrongUsage;
}

// The program from its start-up to the end of the event loop.
int RunWorkbench(QApplication& application, const Arguments& arguments) {
  QtFrontEnd window;
  window.SetTracing(arguments.trace);
  std::unique_ptr<ScriptRecorder> recorder;
  if (!arguments.record.empty()) {
    if (!ScriptRecorder::MayReplace(arguments.record)) {
      std::fprintf(stderr, "corvane: %s is there and holds no record; it is left as it is.\n",
                   arguments.record.c_str());
      return EXIT_FAILURE;
    }
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
  std::signal(SIGXFSZ, SIG_IGN);  // a write beyond the limit of file sizes fails, which is told
  const std::vector<std::string> words = Words(argc, argv);
  const Arguments first = ReadArguments(words);
  if (first.help || first.version) {  // these need no display
    std::fputs(first.help ? kUsage : "corvane 1.0\n", stdout);
    return EXIT_SUCCESS;
  }
  if (!HasDisplay(words)) {
    if (!first.problem.empty()) return TellWrongUsage(first);
    std::fputs("corvane: there is no display; use corvane-cli.\n", stderr);
    return EXIT_FAILURE;
  }

  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  QApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
  QApplication application(argc, argv);  // takes the toolkit's own options out
  std::setlocale(LC_ALL, "C");           // Qt has set the desktop's; numbers stay in "C"
  QApplication::setApplicationName("corvane");

  const Arguments arguments = ReadArguments(Words(argc, argv));
  if (!arguments.problem.empty()) return TellWrongUsage(arguments);
  return RunWorkbench(application, arguments);
}
