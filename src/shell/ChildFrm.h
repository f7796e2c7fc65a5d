#pragma once

#include <memory>

#include "shell/View.h"

namespace corvane {

// A document window: the frame around one view. Both document kinds use it.
class CChildFrame {
 public:
  explicit CChildFrame(std::unique_ptr<CView> view) : view_(std::move(view)) {}

  CView& GetView() const { return *view_; }

 private:
  std::unique_ptr<CView> view_;
};

}  // namespace corvane
