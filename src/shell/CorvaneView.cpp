#include "shell/CorvaneView.h"

#include <cmath>

#include "OpenGL/Stereo_2Cursor/3DCoordInput.h"
#include "io/NumberText.h"
#include "numerics/Truncate.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::int32_t kEmptyScrollSize = 100;

std::int32_t ScrollExtent(double length, double scale) {
  const std::int32_t pixels = TruncateSaturated(length * scale);
  return pixels < 1 ? kEmptyScrollSize : pixels;
}

}  // namespace

CCorvaneView::CCorvaneView(CCorvaneDoc& document) : CView(document), document_(document) {}

void CCorvaneView::OnInitialUpdate() {
  SetScrollSize({kEmptyScrollSize, kEmptyScrollSize});
  if (HasPicture()) {
    extent = &document_.GetTIN().GetExtent();
    SetScrollSizes();
  }
  statusBar = &document_.GetMainFrame().GetStatusBar();
}

void CCorvaneView::OnUpdate() {
  if (paintEnabled && extent) SetScrollSizes();
}

void CCorvaneView::SetScrollSizes() {
  if (!extent) return;
  SetScrollSize({ScrollExtent(extent->maxX - extent->minX, displayScale),
                 ScrollExtent(extent->maxY - extent->minY, displayScale)});
}

bool CCorvaneView::OnKeyDown(int key, int) {
  switch (key) {
    case Key::kUp:
      Zoom(2.0);
      return true;
    case Key::kDown:
      Zoom(0.5);
      return true;
    case 'A':
      examPoint.x -= examStep.x;
      return true;
    case 'D':
      examPoint.x += examStep.x;
      return true;
    case 'E':
      examPoint.y += examStep.y;
      return true;
    case 'S':
      examPoint.y -= examStep.y;
      return true;
    case 'G':
      AskExamPoint();
      return true;
    default:
      return false;
  }
}

// The wheel moves the exam point's height; without an exam open it stays free for scrolling.
bool CCorvaneView::OnMouseWheel(int notches) {
  if (notches > 0) examPoint.z += examStep.z;
  if (notches < 0) examPoint.z -= examStep.z;
  return false;
}

void CCorvaneView::OnSize(PixelSize clientArea) {
  clientArea_ = clientArea;
  graph.Resize(clientArea);
}

void CCorvaneView::Zoom(double factor) {
  // A step beyond the numbers is not taken: no step back would lead from infinity or 0.
  if (!std::isnormal(displayScale * factor)) return;
  displayScale *= factor;
  SetScrollSizes();
  Invalidate();
}

void CCorvaneView::AskExamPoint() {
  C3DCoordInput input;
  input.x = examPoint.x;
  input.y = examPoint.y;
  input.z = examPoint.z;
  if (!input.Ask()) {
    Invalidate();
    return;
  }
  examPoint = {input.x, input.y, input.z};
}

void CCorvaneView::ShowStatusNumbers(std::span<const int> numbers) {
  std::string text = "[";
  for (const int number : numbers) text += std::to_string(number) + ", ";
  if (statusBar) statusBar->SetPaneText(0, text + "]");
}

void CCorvaneView::ShowStatusNumbers(std::span<const double> numbers) {
  std::string text = "[";
  for (const double number : numbers) text += FixedText(number) + ", ";
  if (statusBar) statusBar->SetPaneText(0, text + "]");
}

}  // namespace corvane
