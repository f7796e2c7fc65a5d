#pragma once

#include <memory>
#include <string>

#include "ui/GraphView.h"
#include "ui/WindowView.h"

class QImage;

namespace corvane {

// Qt's drawing without a display, for a program that shows no windows of its own.
class OffscreenGui {
 public:
  OffscreenGui();
  ~OffscreenGui();
  OffscreenGui(const OffscreenGui&) = delete;
  OffscreenGui& operator=(const OffscreenGui&) = delete;

  // Starts Qt at the first call, unless the program runs it already. It ends with this object.
  void Start();

 private:
  struct Application;
  std::unique_ptr<Application> application_;
};

// Writes the whole content of a view as a PNG file, on white. The file appears whole or not at all.
// False if the view has no picture, the picture does not fit into memory or the file can't be written.
// Qt must be running.
bool SavePicture(WindowView& view, const std::string& path);

// The same of a graph, all of its curves, in its size.
bool SavePicture(const GraphView& graph, const std::string& path);

// Writes an image as a PNG file. False if it is a null image, or the file can't be written.
bool WritePng(const QImage& image, const std::string& path);

}  // namespace corvane
