#include "shell/NTGraph.h"

#include "ui/FrontEnd.h"

namespace corvane {

int CNTGraph::Show(WindowView& view, const std::string& title, PixelSize clientArea) {
  if (!created_) {
    title_ = title;
    if (clientArea.width > 0 && clientArea.height > 0) size_ = clientArea;
  }
  if (!Ui().ShowGraph(view, *this)) {
    ShowWarning("Can not create the graph window! Please register NTGraph.ocx");
    return -1;
  }
  created_ = true;
  return 0;
}

void CNTGraph::ClearGraph() {
  elements_.clear();
  current_ = -1;
}

void CNTGraph::SetElement(int element) {
  if (element >= 0 && element < GetElementCount()) {
    current_ = element;
    return;
  }
  current_ = GetElementCount();
  elements_.emplace_back();
}

void CNTGraph::Redraw() {
  Ui().PlotGraph(*this, current_);
}

void CNTGraph::Resize(PixelSize clientArea) {
  if (!created_) return;
  size_ = clientArea;
  Ui().ResizeGraph(*this);
}

}  // namespace corvane
