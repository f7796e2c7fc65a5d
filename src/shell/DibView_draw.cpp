// The painting of CDibView: the picture, the polylines, the points, the labels.

#include <algorithm>
#include <cmath>
#include <unordered_set>

#include "numerics/Truncate.h"
#include "shell/DibView.h"

namespace corvane {

namespace {

// Overlays keep their size on screen at any zoom.
constexpr Colour kPolylineColour{0, 160, 0};
constexpr Colour kPointColour{255, 0, 0};
constexpr Colour kLabelColour{0, 0, 190};
constexpr int kPolylineWidth = 2;
constexpr std::int64_t kPointArm = 3;       // of the cross at a point
constexpr std::int64_t kLabelReach = 1000;  // a label may show that far from its place

// Of more labels than these one is drawn in each cell: others could not be read, and take long.
constexpr std::size_t kManyLabels = 5000;
constexpr std::int64_t kLabelWidth = 64;
constexpr std::int64_t kLabelHeight = 16;

constexpr std::size_t kBatch = 8192;  // segments handed to the canvas at a time

// In a picture file the longer side has about this many pixels at least and at most.
constexpr std::int32_t kSmallestPicture = 400;
constexpr std::int32_t kLargestPicture = 4000;
constexpr std::int32_t kMostEnlarged = 16;

// The cells of the content in which a label stands.
class LabelCells {
 public:
  // False if there is one already.
  bool Take(PixelPoint place) {
    const std::int64_t col = place.x / kLabelWidth;
    const std::int64_t row = place.y / kLabelHeight;
    return taken_.insert(row * (std::int64_t{1} << 32) + col).second;
  }

 private:
  std::unordered_set<std::int64_t> taken_;
};

// Collects segments in bitmap pixels for the canvas: those that may show.
class OverlayPainter {
 public:
  OverlayPainter(Canvas& canvas, double zoom) : canvas_(canvas), visible_(canvas.GetVisible()), zoom_(zoom) {
    segments_.reserve(kBatch);
  }
  ~OverlayPainter() { Flush(); }
  OverlayPainter(const OverlayPainter&) = delete;
  OverlayPainter& operator=(const OverlayPainter&) = delete;

  void AddCross(double x, double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) return;
    const PixelPoint at = ToContent(x + 0.5, y + 0.5);
    Add({{at.x - kPointArm, at.y}, {at.x + kPointArm, at.y}});
    Add({{at.x, at.y - kPointArm}, {at.x, at.y + kPointArm}});
  }

  void AddLine(double x0, double y0, double x1, double y1) {
    if (!std::isfinite(x0) || !std::isfinite(y0) || !std::isfinite(x1) || !std::isfinite(y1)) return;
    Add({ToContent(x0, y0), ToContent(x1, y1)});
  }

  void AddTexts(const std::vector<ViewLabel>& labels) {
    LabelCells cells;
    LabelCells* const thinned = labels.size() > kManyLabels ? &cells : nullptr;
    for (const ViewLabel& label : labels) AddText(label.x, label.y, label.text, thinned);
  }

 private:
  void AddText(double x, double y, const std::string& text, LabelCells* cells) {
    if (!std::isfinite(x) || !std::isfinite(y)) return;
    const PixelPoint at = ToContent(x, y);
    if (at.x < visible_.left - kLabelReach || at.x >= visible_.right + kLabelReach) return;
    if (at.y < visible_.top - kLabelReach || at.y >= visible_.bottom + kLabelReach) return;
    if (!cells || cells->Take(at)) canvas_.DrawLabel(at, text);
  }

  PixelPoint ToContent(double x, double y) const {
    return {TruncateTo64(std::floor(x * zoom_)), TruncateTo64(std::floor(y * zoom_))};
  }

  void Add(const PixelSegment& segment) {
    const auto [left, right] = std::minmax(segment.from.x, segment.to.x);
    const auto [top, bottom] = std::minmax(segment.from.y, segment.to.y);
    if (right < visible_.left - kPolylineWidth || left >= visible_.right + kPolylineWidth) return;
    if (bottom < visible_.top - kPolylineWidth || top >= visible_.bottom + kPolylineWidth) return;
    if (segments_.size() == kBatch) Flush();
    segments_.push_back(segment);
  }

  void Flush() {
    if (!segments_.empty()) canvas_.DrawSegments(segments_);
    segments_.clear();
  }

  Canvas& canvas_;
  PixelRect visible_;
  double zoom_;
  std::vector<PixelSegment> segments_;
};

double PictureZoom(PixelSize size) {
  const std::int32_t longer = std::max({size.width, size.height, 1});
  if (longer > kLargestPicture) return static_cast<double>(kLargestPicture) / longer;
  return std::clamp((kSmallestPicture + longer - 1) / longer, 1, kMostEnlarged);
}

}  // namespace

void CDibView::OnDraw(Canvas& canvas) {
  Draw(canvas, m_zoom);
}

PixelSize CDibView::GetPictureSize() const {
  const PixelSize size = document_.GetSize();
  const double zoom = PictureZoom(size);
  return {std::max(TruncateSaturated(std::ceil(size.width * zoom)), 1),
          std::max(TruncateSaturated(std::ceil(size.height * zoom)), 1)};
}

void CDibView::DrawPicture(Canvas& canvas) {
  Draw(canvas, PictureZoom(document_.GetSize()));
}

void CDibView::Draw(Canvas& canvas, double zoom) {
  if (!document_.GetDib().empty()) {
    if (!painter_) painter_ = std::make_unique<DibPainter>(document_.GetDib());
    painter_->Draw(canvas, zoom);
  }
  if (m_showOverlay) DrawOverlay(canvas, zoom);
}

void CDibView::DrawOverlay(Canvas& canvas, double zoom) const {
  canvas.SetPen(kPolylineColour, kPolylineWidth);
  {
    OverlayPainter painter(canvas, zoom);
    for (const std::vector<double>& line : m_polylines) {
      for (std::size_t i = 3; i < line.size(); i += 2) {
        painter.AddLine(line[i - 3], line[i - 2], line[i - 1], line[i]);
      }
    }
  }
  canvas.SetPen(kPointColour, 1);
  {
    OverlayPainter painter(canvas, zoom);
    for (std::size_t i = 1; i < m_points.size(); i += 2) painter.AddCross(m_points[i - 1], m_points[i]);
  }
  if (!m_showLabels) return;
  canvas.SetPen(kLabelColour, 1);
  OverlayPainter(canvas, zoom).AddTexts(m_labels);
}

}  // namespace corvane
