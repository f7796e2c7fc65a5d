#pragma once

#include <memory>
#include <string>
#include <vector>

#include "dib/DibPainter.h"
#include "erdasimg/ErdasImg.h"
#include "shell/DibDoc.h"
#include "shell/View.h"

namespace corvane {

struct ViewLabel {
  double x = 0.0;
  double y = 0.0;
  std::string text;
};

// The window on a bitmap: the picture and, over it, polylines, points and labels.
class CDibView : public CView {
 public:
  explicit CDibView(CDibDoc& document) : CView(document), document_(document) {}

  CDibDoc& GetDocument() const { return document_; }

  // The overlays in bitmap pixels, y down from the top; Redraw() shows what has changed. A point (x, y) is
  // drawn at the centre of the pixel of column x and row y. Polylines and labels run along the edges of
  // pixels: (0, 0) is the bitmap's top left corner, (1, 1) the first pixel's bottom right one.
  std::vector<double> m_points;                  // x, y, x, y, ...
  std::vector<std::vector<double>> m_polylines;  // of each x, y, x, y, ...
  std::vector<ViewLabel> m_labels;
  std::uint8_t m_showOverlay = 1;
  std::uint8_t m_showLabels = 1;  // the L key changes it
  double m_zoom = 1.0;            // pixels of the screen for one of the bitmap

  // Sets the zoom: the factor itself in mode 0, times the present one in any other. It is held between 1 / 64
  // and 64, and to what a window can scroll. What is in the middle of what shows stays there.
  void SetZoom(int mode, double factor);

  // Tells the front end of the overlays and has the window painted anew.
  void Redraw();

  WindowKind GetKind() const override { return WindowKind::Bitmap; }
  bool HasPicture() const override;
  void OnInitialUpdate() override;
  void OnUpdate() override;
  void OnDraw(Canvas& canvas) override;

  // The bitmap pixel by pixel; a small one is enlarged by a whole factor, and one beyond 4000 pixels reduced.
  PixelSize GetPictureSize() const override;
  void DrawPicture(Canvas& canvas) override;

  // The arrows move the first point of the first polyline by `repeatCount` pixels; L shows and hides labels.
  bool OnKeyDown(int key, int repeatCount) override;
  bool OnMouseWheel(int notches) override;
  void OnSize(PixelSize clientArea) override;

  double GetZoom() const override { return m_zoom; }
  void OnZoomSteps(int steps, PixelPoint anchor) override;
  // Tells column, row and the pixel's components in status pane 0.
  void OnMouseMove(PixelPoint place) override;
  bool IsEnabled(EditItem item) const override;
  void OnEditItem(EditItem item) override;
  void OnZoomItem(ZoomItem item) override;

  // "(col:12, row:7) (255)": what the status pane shows at a place of the content.
  std::string StatusText(PixelPoint place) const;

 private:
  PixelPoint GetMiddle() const;  // of what the window shows of the picture
  void ZoomTo(double zoom, PixelPoint anchor);
  void TellStatus(const std::string& text) const;
  void Draw(Canvas& canvas, double zoom);
  void DrawOverlay(Canvas& canvas, double zoom) const;
  bool MoveFirstPoint(int key, int repeatCount);

  CDibDoc& document_;
  std::unique_ptr<DibPainter> painter_;  // of the document's present bitmap, made at the first drawing
  PixelSize clientArea_;                 // 0 x 0 where no window has told it
};

// Opens a bitmap window.
CDibView& OpenBitmapWindow(CMainFrame& frame, Dib dib, const std::string& title);

// Opens a bitmap window without a bitmap: a white picture of this size, for overlays.
CDibView& OpenEmptyWindow(CMainFrame& frame, PixelSize size, const std::string& title);

// Opens a bitmap window on a .bmp file. Nothing if it can't be read, which has been told.
CDibDoc* OpenBitmapFile(CMainFrame& frame, const std::string& path);

// Opens a bitmap window on the image, or an empty one without an image. Nothing if the image makes no bitmap,
// for want of memory, which has been told.
// Samples are shown as bytes, of larger pixel types their lowest ones.
CDibView* OpenImageWindow(CMainFrame& frame, const ErdasImg* image, const std::string& title);

}  // namespace corvane
