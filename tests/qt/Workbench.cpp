#include "qt/Workbench.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <cstring>

#include "qt/ModalScript.h"

namespace corvane {

Workbench::Workbench() : app(CommandRows(), folder.GetPath() + "/recent-files.txt"), window(app) {
  frontEnd.SetMainWindow(&window);
  app.InitInstance("");
  window.Refresh();
  window.show();
  QApplication::processEvents();
}

Workbench::~Workbench() {
  app.ExitInstance();
  frontEnd.SetMainWindow(nullptr);
}

const CommandRow& Workbench::Row(const std::string& name) const {
  const CommandLookup lookup = FindCommand(app.GetCommands(), name);
  EXPECT_NE(lookup.row, nullptr) << name;
  return *lookup.row;
}

void Workbench::Open(const std::string& path) {
  ModalScript script({Press("OK")});
  window.OpenPath(path);
  QApplication::processEvents();
}

void WriteSquareTin(const std::string& path, double side) {
  struct Corner {
    std::int32_t id;
    double x, y;
  };
  const Corner kSouthWest = {0, 0, 0}, kSouthEast = {1, side, 0}, kNorthWest = {2, 0, side},
               kNorthEast = {3, side, side};
  std::string bytes;
  const auto append = [&](const auto& value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
  };
  append(std::int32_t{2});
  for (const Corner& corner : {kSouthWest, kSouthEast, kNorthWest, kSouthEast, kNorthEast, kNorthWest}) {
    append(corner.id);
    append(corner.x);
    append(corner.y);
    append(5.0);
    append(1.0);
  }
  WriteFileBytes(path, bytes);
}

}  // namespace corvane
