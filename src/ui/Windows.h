#pragma once

#include <string>

#include "ui/GraphView.h"
#include "ui/LogView.h"
#include "ui/WindowView.h"

namespace corvane {

// The windows that a front end shows. A view outlives its window: CloseWindow comes before its end.
class Windows {
 public:
  virtual ~Windows() = default;

  // Shows a new window on the view and makes it the active one.
  virtual void OpenWindow(WindowView& view) = 0;
  virtual void CloseWindow(WindowView& view) = 0;
  virtual void ActivateWindow(WindowView& view) = 0;

  // The view's drawing has changed: paint it anew; `atOnce` before this call returns.
  virtual void RepaintWindow(WindowView& view, bool atOnce) = 0;

  // What lies over the view's picture has changed; its painting is asked for by RepaintWindow.
  virtual void ShowOverlay(WindowView& view, const OverlayCounts& counts) = 0;

  // The view's scroll size, scroll position or title has changed.
  virtual void UpdateWindowFrame(WindowView& view) = 0;

  // Makes the graph over a window's client area at the first call, and shows it in front of the drawing.
  // False if it can't be made. It closes with its window.
  virtual bool ShowGraph(WindowView& view, const GraphView& graph) = 0;

  // A curve of the graph has new points, or the graph none at all (element -1): the axes fit all curves anew.
  virtual void PlotGraph(const GraphView& graph, int element) = 0;

  // The graph's size has changed with its window's client area.
  virtual void ResizeGraph(const GraphView& graph) = 0;

  // Opens a text window, which is empty at first, adds to its text, and closes it. A person may have closed
  // it before. A log outlives its window.
  virtual void OpenLog(const LogView& log) = 0;
  virtual void AppendToLog(const LogView& log, const std::string& text) = 0;
  virtual void CloseLog(const LogView& log) = 0;
};

}  // namespace corvane
