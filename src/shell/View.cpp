#include "shell/View.h"

#include <algorithm>

#include "numerics/Truncate.h"
#include "shell/ChildFrm.h"
#include "shell/Document.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// The position that keeps its relative place: int(newSize * (position / oldSize)).
std::int64_t RelativePlace(std::int64_t position, std::int32_t oldSize, std::int32_t newSize) {
  if (oldSize == 0) return position;
  return TruncateTo64(newSize * (static_cast<double>(position) / oldSize));
}

}  // namespace

std::string CView::GetTitle() const {
  const auto& frames = document_.GetFrames();
  if (frames.size() < 2) return document_.GetTitle();
  for (std::size_t i = 0; i < frames.size(); ++i) {
    if (&frames[i]->GetView() == this) return document_.GetTitle() + ":" + std::to_string(i + 1);
  }
  return document_.GetTitle();
}

void CView::SetScrollPosition(PixelPoint position) {
  scrollPosition_.x = std::clamp<std::int64_t>(position.x, 0, scrollSize_.width);
  scrollPosition_.y = std::clamp<std::int64_t>(position.y, 0, scrollSize_.height);
}

void CView::SetScrollSize(PixelSize size) {
  const PixelSize old = scrollSize_;
  scrollSize_ = size;
  SetScrollPosition({RelativePlace(scrollPosition_.x, old.width, size.width),
                     RelativePlace(scrollPosition_.y, old.height, size.height)});
  Ui().UpdateWindowFrame(*this);
}

void CView::Invalidate() {
  Ui().RepaintWindow(*this, false);
}

void CView::UpdateWindow() {
  Ui().RepaintWindow(*this, true);
}

}  // namespace corvane
