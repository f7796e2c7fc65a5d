#include "shell/NTGraph.h"

#include "ui/FrontEnd.h"

namespace corvane {

int CNTGraph::Show(WindowView& view, const std::string& title, PixelSize clientArea) {
  const bool existed = created_;
  if (!existed) {
    title_ = title;
    if (clientArea.width > 0 && clientArea.height > 0) size_ = clientArea;
  }
  created_ = true;  // its making may resize it
  if (!Ui().ShowGraph(view, *this)) {
    created_ = existed;
    ShowWarning("Can not create the graph window! Please register NTGraph.ocx");
    return -1;
  }
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

GraphElement& CNTGraph::Current() {
  if (current_ < 0) SetElement(-1);
  return elements_[static_cast<std::size_t>(current_)];
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
