#include "shell/DibView.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "numerics/Truncate.h"
#include "shell/ChildFrm.h"
#include "shell/CorvaneApp.h"
#include "shell/MainFrm.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// The steps of zooming in and out: whole pixels where they are large, whole parts where they are small.
constexpr std::array<double, 25> kZooms = {
    1.0 / 64, 1.0 / 48, 1.0 / 32, 1.0 / 24, 1.0 / 16, 1.0 / 12, 1.0 / 8, 1.0 / 6, 1.0 / 4,
    1.0 / 3,  1.0 / 2,  2.0 / 3,  1.0,      1.5,      2.0,      3.0,     4.0,     6.0,
    8.0,      12.0,     16.0,     24.0,     32.0,     48.0,     64.0};
constexpr double kLargestContent = 1 << 30;  // pixels that a window can scroll

constexpr double kItemZoom = 5.0;  // of "Zoom 1:5", in which vectors are looked at

// What the status pane adds to the place, in the format "(%s)".
constexpr const char* kOutOfRange = "Out of range";
constexpr const char* kNoFormat = "Format not supported";

double NextZoom(double zoom, int steps) {
  for (; steps > 0; --steps) {
    const auto next = std::upper_bound(kZooms.begin(), kZooms.end(), zoom);
    zoom = next == kZooms.end() ? kZooms.back() : *next;
  }
  for (; steps < 0; ++steps) {
    const auto next = std::lower_bound(kZooms.begin(), kZooms.end(), zoom);
    zoom = next == kZooms.begin() ? kZooms.front() : *(next - 1);
  }
  return zoom;
}

double HoldZoom(double zoom, PixelSize size) {
  const double longer = std::max({size.width, size.height, 1});
  return std::clamp(zoom, kZooms.front(), std::min(kZooms.back(), kLargestContent / longer));
}

PixelSize Scaled(PixelSize size, double zoom) {
  return {TruncateSaturated(std::ceil(size.width * zoom)), TruncateSaturated(std::ceil(size.height * zoom))};
}

// Kept: "(%s)" follows without a blank, the components with one.
std::string ComponentsText(const Dib& dib, std::int32_t col, std::int32_t row) {
  std::array<std::uint8_t, 3> color{};
  const int n = GetPixelColor(dib, col, row, color.data());
  if (n < 0) return std::string("(") + (n == -1 ? kOutOfRange : kNoFormat) + ")";
  std::string text = " (" + std::to_string(color[0]);
  for (int i = 1; i < n; ++i) text += "," + std::to_string(color[static_cast<std::size_t>(i)]);
  return text + ")";
}

}  // namespace

void CDibView::SetZoom(int mode, double factor) {
  ZoomTo(mode == 0 ? factor : m_zoom * factor, GetMiddle());
}

PixelPoint CDibView::GetMiddle() const {
  return {std::min(clientArea_.width, GetScrollSize().width) / 2,
          std::min(clientArea_.height, GetScrollSize().height) / 2};
}

void CDibView::OnZoomSteps(int steps, PixelPoint anchor) {
  ZoomTo(NextZoom(m_zoom, steps), anchor);
}

void CDibView::ZoomTo(double zoom, PixelPoint anchor) {
  const double held = std::isfinite(zoom) ? HoldZoom(zoom, document_.GetSize()) : m_zoom;
  const PixelPoint position = GetScrollPosition();
  const double ratio = held / m_zoom;
  const auto moved = [ratio](std::int64_t from, std::int64_t at) {
    return TruncateTo64(std::floor((static_cast<double>(from + at) + 0.5) * ratio)) - at;
  };
  m_zoom = held;
  SetScrollSize(Scaled(document_.GetSize(), m_zoom));
  SetScrollPosition({moved(position.x, anchor.x), moved(position.y, anchor.y)});
  Ui().UpdateWindowFrame(*this);
  Invalidate();
}

void CDibView::Redraw() {
  Ui().ShowOverlay(*this, {m_points.size() / 2, m_polylines.size(), m_labels.size()});
  Invalidate();
}

bool CDibView::HasPicture() const {
  return document_.GetSize().width > 0 && document_.GetSize().height > 0;
}

void CDibView::OnInitialUpdate() {
  OnUpdate();
}

void CDibView::OnUpdate() {
  painter_.reset();
  m_zoom = HoldZoom(m_zoom, document_.GetSize());
  SetScrollSize(Scaled(document_.GetSize(), m_zoom));
}

bool CDibView::OnKeyDown(int key, int repeatCount) {
  if (key == 'L') {
    m_showLabels = m_showLabels ? 0 : 1;
    TellStatus(std::string("Labels: ") + std::to_string(m_labels.size()) +
               (m_showLabels ? ", shown." : ", hidden."));
    Invalidate();
    return true;
  }
  return MoveFirstPoint(key, repeatCount);
}

bool CDibView::MoveFirstPoint(int key, int repeatCount) {
  if (m_polylines.empty() || m_polylines.front().size() < 2) return false;
  std::vector<double>& values = m_polylines.front();
  switch (key) {
    case Key::kLeft:
      values[0] -= repeatCount;
      break;
    case Key::kUp:
      values[1] -= repeatCount;
      break;
    case Key::kRight:
      values[0] += repeatCount;
      break;
    case Key::kDown:
      values[1] += repeatCount;
      break;
    default:
      return false;
  }
  Redraw();
  return true;
}

bool CDibView::OnMouseWheel(int) {
  return false;
}

void CDibView::OnSize(PixelSize clientArea) {
  clientArea_ = clientArea;
}

std::string CDibView::StatusText(PixelPoint place) const {
  const std::int32_t col = TruncateSaturated(std::floor(static_cast<double>(place.x) / m_zoom));
  const std::int32_t row = TruncateSaturated(std::floor(static_cast<double>(place.y) / m_zoom));
  const std::string text = "(col:" + std::to_string(col) + ", row:" + std::to_string(row) + ")";
  return document_.GetDib().empty() ? text : text + ComponentsText(document_.GetDib(), col, row);
}

void CDibView::OnMouseMove(PixelPoint place) {
  TellStatus(StatusText(place));
}

void CDibView::TellStatus(const std::string& text) const {
  CMainFrame& frame = document_.GetMainFrame();
  std::snprintf(frame.GetStatusSlot(0), CMainFrame::kStatusSlotSize, "%s", text.c_str());
  frame.ShowStatusSlots(0);
}

bool CDibView::IsEnabled(EditItem item) const {
  return item == EditItem::Copy ? !document_.GetDib().empty() : Ui().HasBitmap();
}

void CDibView::OnEditItem(EditItem item) {
  if (item == EditItem::Copy) {
    Ui().PutBitmap(document_.GetDib());
    return;
  }
  Dib dib = Ui().GetBitmap();
  if (!IsDib(dib)) return ShowWarning("The clipboard holds no bitmap that can be shown here.");
  document_.SetDib(std::move(dib));
  document_.SetModifiedFlag(true);
  const PixelSize size = document_.GetSize();
  const bool hasOverlay = !m_points.empty() || !m_polylines.empty() || !m_labels.empty();
  TellStatus(std::to_string(size.height) + " rows, " + std::to_string(size.width) + " columns, " +
             std::to_string(DibBitCount(document_.GetDib())) + " bits a pixel." +
             (hasOverlay ? " What lies over the picture stays." : ""));
}

void CDibView::OnZoomItem(ZoomItem item) {
  switch (item) {
    case ZoomItem::In:
      return OnZoomSteps(1, GetMiddle());
    case ZoomItem::Out:
      return OnZoomSteps(-1, GetMiddle());
    case ZoomItem::OneToOne:
      return SetZoom(0, 1.0);
    case ZoomItem::OneToFive:
      return SetZoom(0, kItemZoom);
  }
}

namespace {

CDibDoc& AddBitmapDocument(CMainFrame& frame) {
  CCorvaneApp& app = frame.GetApp();
  return static_cast<CDibDoc&>(app.AddDocument(app.GetImageTemplate()));
}

}  // namespace

CDibView& OpenBitmapWindow(CMainFrame& frame, Dib dib, const std::string& title) {
  CDibDoc& document = AddBitmapDocument(frame);
  document.SetTitle(title);
  document.SetDib(std::move(dib));
  return static_cast<CDibView&>(document.AddView());
}

CDibView& OpenEmptyWindow(CMainFrame& frame, PixelSize size, const std::string& title) {
  CDibDoc& document = AddBitmapDocument(frame);
  document.SetTitle(title);
  document.SetEmptySize(size);
  return static_cast<CDibView&>(document.AddView());
}

CDibDoc* OpenBitmapFile(CMainFrame& frame, const std::string& path) {
  CDibDoc& document = AddBitmapDocument(frame);
  if (document.OnOpenDocument(path) <= 0) {
    frame.GetApp().CloseDocument(document);
    return nullptr;
  }
  document.SetPathName(path, false);
  document.SetImagePath(path);
  document.AddView();
  return &document;
}

CDibView* OpenImageWindow(CMainFrame& frame, const ErdasImg* image, const std::string& title) {
  if (!image) return &OpenEmptyWindow(frame, {}, title);
  Dib dib = image->MakeDib();
  if (dib.empty()) {
    ShowWarning(ErdasImg::kNoMemoryText);
    return nullptr;
  }
  CDibView& view = OpenBitmapWindow(frame, std::move(dib), title);
  view.GetDocument().SetImagePath(image->GetFileName());
  return &view;
}

}  // namespace corvane
