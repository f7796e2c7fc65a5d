#pragma once

#include <span>
#include <vector>

#include "StereoPair/StereoPair.h"
#include "TIN/TIN.h"
#include "erdasimg/ErdasImg.h"
#include "numerics/Point3.h"
#include "shell/CorvaneDoc.h"
#include "shell/MainFrm.h"
#include "shell/NTGraph.h"
#include "shell/View.h"

namespace corvane {

// The window on a TIN: paints its triangles, north up, and carries what the commands keep between runs.
class CCorvaneView : public CView {
 public:
  explicit CCorvaneView(CCorvaneDoc& document);

  CCorvaneDoc& GetDocument() const { return document_; }

  WindowKind GetKind() const override { return WindowKind::Tin; }
  bool HasPicture() const override;
  void OnInitialUpdate() override;
  void OnUpdate() override;
  void OnDraw(Canvas& canvas) override;
  PixelSize GetPictureSize() const override;
  void DrawPicture(Canvas& canvas) override;
  bool OnKeyDown(int key, int repeatCount) override;
  bool OnMouseWheel(int notches) override;
  void OnSize(PixelSize clientArea) override;

  // Recomputes the scroll size from the TIN's extents and the scale, at most 2^31 - 1 pixels an axis.
  void SetScrollSizes();

  // Lists of numbers in the message pane: "[1, 2, ]" and "[1.000000, 2.000000, ]".
  void ShowStatusNumbers(std::span<const int> numbers);
  void ShowStatusNumbers(std::span<const double> numbers);

  // Plot into the graph "Data Graph", which is made at first use and shown. `element` -1, or one that there
  // is not yet, adds an element; an element that there is gets the points in addition. Of two lists the
  // shorter one counts. 0; -1, with a warning, if there can't be a graph.

  // Clears the graph first, and draws the counts as red bars at the bins' starts.
  int PlotHistogram(int element, std::span<const double> xs, std::span<const std::int32_t> counts);
  int PlotSeries(int element, std::span<const double> xs, std::span<const double> ys, Colour colour,
                 int width);
  // x, y, x, y, ...
  int PlotPairs(int element, std::span<const double> pairs, Colour colour, int width);
  int PlotPairs(int element, std::span<const std::int32_t> pairs, Colour colour, int width);
  // x is the index.
  int PlotValues(int element, std::span<const double> ys, Colour colour, int width);

  const Extent6* extent = nullptr;  // the TIN's, set at the first update
  double displayScale = 1.0;        // screen pixels per ground unit
  bool paintEnabled = true;
  CStatusBar* statusBar = nullptr;  // the frame's, taken at the first update
  CNTGraph graph;                   // covers the drawing once something has been plotted
  StereoPair stereoPair;            // keeps what matching methods leave for the next one
  ErdasImg profileImage;            // of "Image Profile", kept from one row to the next
  Point3 examPoint;                 // ground point of "Matching Exam"
  Point3 examStep;                  // how far a key moves it

 private:
  void Zoom(double factor);
  void AskExamPoint();
  void DrawTin(Canvas& canvas, double scale);
  int ShowGraph();
  template <typename PointAt>
  int PlotCurve(int element, std::size_t n, Colour colour, int width, PointAt pointAt);

  CCorvaneDoc& document_;
  PixelSize clientArea_;  // 0 x 0 where no window has told it
};

}  // namespace corvane
