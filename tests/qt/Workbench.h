#pragma once

#include <QMdiArea>
#include <string>
#include <vector>

#include "commands/CommandRows.h"
#include "qt/MainWindow.h"
#include "qt/QtFrontEnd.h"
#include "qt/ViewWindow.h"
#include "shell/CorvaneApp.h"
#include "shell/CorvaneView.h"
#include "support/TempFolder.h"

namespace corvane {

// The program as a person sees it, started without a file, in an empty folder and with an empty recent list.
class Workbench {
 public:
  Workbench();
  ~Workbench();

  const CommandRow& Row(const std::string& name) const;
  CommandResult Run(const std::string& name) { return app.RunCommand(Row(name)); }
  // Chooses a menu item.
  void Choose(const std::string& name) { window.GetMenus().Find(name)->trigger(); }
  // Opens a .tin file and dismisses the box about it.
  void Open(const std::string& path);

  CCorvaneView& ActiveView() { return *app.GetMainFrame().GetTinView(); }
  CViewWindow& ActiveWindow() { return *window.FindWindow(ActiveView()); }
  int WindowCount() const { return static_cast<int>(window_.GetArea().subWindowList().size()); }

  TempFolder folder;
  QtFrontEnd frontEnd;
  InstalledFrontEnd installed{frontEnd};
  CCorvaneApp app;
  CMainWindow window;

 private:
  CMainWindow& window_ = window;
};

// Writes a square of two triangles, its corners at (0, 0) and (side, side), cut from north-west to
// south-east.
void WriteSquareTin(const std::string& path, double side);

}  // namespace corvane
