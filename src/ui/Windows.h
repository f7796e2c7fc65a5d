#pragma once

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

  // The view's scroll size, scroll position or title has changed.
  virtual void UpdateWindowFrame(WindowView& view) = 0;
};

}  // namespace corvane
