#include "shell/DibView.h"

#include "ShellFixture.h"
#include "dib/DibIo.h"
#include "shell/ChildFrm.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// An image of 4 columns and 3 rows whose pixels are 10 * row + col.
ErdasImg SmallImage(std::uint16_t nBands = 1) {
  ErdasHeader header;
  header.cols = 4;
  header.rows = 3;
  header.bandCount = nBands;
  ErdasImg image;
  image.Create(header, false);
  for (std::int32_t band = 0; band < nBands; ++band) {
    for (std::int32_t row = 0; row < 3; ++row) {
      for (std::int32_t col = 0; col < 4; ++col) image.SetPixel(band, row, col, 100 * band + 10 * row + col);
    }
  }
  return image;
}

class DibViewTest : public ShellTest {
 protected:
  void SetUp() override { Start(); }

  CDibView& Show(const ErdasImg& image) {
    CDibView* view = OpenImageWindow(app.GetMainFrame(), &image, "a.lan");
    EXPECT_NE(view, nullptr);
    return *view;
  }

  RecordingCanvas Drawn(CDibView& view) {
    RecordingCanvas canvas({0, 0, 400, 400});
    view.OnDraw(canvas);
    return canvas;
  }
};

TEST_F(DibViewTest, OpenImageWindowShowsTheImageInAWindowOfItsOwn) {
  CDibView& view = Show(SmallImage());
  EXPECT_EQ(view.GetTitle(), "a.lan");
  EXPECT_EQ(view.GetKind(), WindowKind::Bitmap);
  EXPECT_EQ(ui.EventsWith("open-window").back(), "open-window: a.lan");
  EXPECT_EQ(view.GetScrollSize(), (PixelSize{4, 3}));
  EXPECT_EQ(view.m_showOverlay, 1);
  EXPECT_EQ(view.m_zoom, 1.0);
  EXPECT_EQ(app.GetMainFrame().GetActiveView(), &view);
  EXPECT_FALSE(view.GetDocument().IsModified());
  EXPECT_EQ(Drawn(view).pixels.at({2, 1}), 0x0c0c0cu);  // 12 in grey
}

TEST_F(DibViewTest, OpenImageWindowWithoutAnImageIsEmpty) {
  CDibView* view = OpenImageWindow(app.GetMainFrame(), nullptr, "points");
  ASSERT_NE(view, nullptr);
  EXPECT_FALSE(view->HasPicture());
  view->GetDocument().SetEmptySize({30, 20});
  EXPECT_TRUE(view->HasPicture());
  EXPECT_EQ(view->GetScrollSize(), (PixelSize{30, 20}));
  EXPECT_THAT(Drawn(*view).order, IsEmpty());
}

TEST_F(DibViewTest, AnImageWithoutPixelsOpensNoWindow) {
  ErdasImg empty;
  EXPECT_EQ(OpenImageWindow(app.GetMainFrame(), &empty, "x"), nullptr);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Allocate Memory for Image Fails"));
}

TEST_F(DibViewTest, CommandsGoOnToTheTinWindowWhileABitmapWindowIsInFront) {
  CCorvaneView& tinView = View();
  CDibView& first = Show(SmallImage());
  CDibView& second = Show(SmallImage());
  EXPECT_EQ(app.GetMainFrame().GetTinView(), &tinView);
  EXPECT_EQ(app.GetMainFrame().GetDibView(), &second);
  app.GetMainFrame().SetActiveView(&first);
  EXPECT_EQ(app.GetMainFrame().GetDibView(), &first);
  app.CloseView(first);
  EXPECT_EQ(app.GetMainFrame().GetDibView(), &second);
  app.CloseView(second);
  EXPECT_EQ(app.GetMainFrame().GetDibView(), nullptr);
  EXPECT_EQ(app.GetMainFrame().GetActiveView(), &tinView);
}

TEST_F(DibViewTest, StatusTextTellsColumnRowAndComponents) {
  CDibView& view = Show(SmallImage());
  EXPECT_EQ(view.StatusText({2, 1}), "(col:2, row:1) (12)");
  view.SetZoom(0, 8.0);
  EXPECT_EQ(view.StatusText({2 * 8 + 7, 1 * 8}), "(col:2, row:1) (12)");
  EXPECT_EQ(Show(SmallImage(3)).StatusText({2, 1}), "(col:2, row:1) (12,112,212)");
  EXPECT_EQ(OpenImageWindow(app.GetMainFrame(), nullptr, "")->StatusText({2, 1}), "(col:2, row:1)");
}

TEST_F(DibViewTest, StatusTextPastTheBitmapEndsInOutOfRange) {
  CDibView& view = Show(SmallImage());
  EXPECT_EQ(view.StatusText({4, 1}), "(col:4, row:1)(Out of range)");
  EXPECT_EQ(view.StatusText({0, 3}), "(col:0, row:3)(Out of range)");
  EXPECT_EQ(view.StatusText({-1, 0}), "(col:-1, row:0)(Out of range)");
  EXPECT_EQ(Show(SmallImage(2)).StatusText({1, 1}), "(col:1, row:1)(Format not supported)");
}

TEST_F(DibViewTest, MovingThePointerSetsStatusPaneZero) {
  Show(SmallImage()).OnMouseMove({3, 2});
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: (col:3, row:2) (23)");
  EXPECT_EQ(app.GetMainFrame().GetStatusBar().GetPaneText(0), "(col:3, row:2) (23)");
}

TEST_F(DibViewTest, DrawsThePictureThenPolylinesThenPointsThenLabels) {
  CDibView& view = Show(SmallImage());
  view.m_points = {1.0, 2.0};
  view.m_polylines = {{0, 0, 4, 0, 4, 3}, {1, 1}, {}};
  view.m_labels = {{2.0, 1.0, "roof"}};
  view.SetZoom(0, 10.0);
  const RecordingCanvas canvas = Drawn(view);
  EXPECT_THAT(canvas.order, ElementsAre("pixels", "segments", "segments", "label"));
  ASSERT_EQ(canvas.edges.size(), 4u);
  EXPECT_EQ(canvas.edges[0].segment, (PixelSegment{{0, 0}, {40, 0}}));
  EXPECT_EQ(canvas.edges[1].segment, (PixelSegment{{40, 0}, {40, 30}}));
  // The cross of a point stands on the middle of its pixel.
  EXPECT_EQ(canvas.edges[2].segment, (PixelSegment{{12, 25}, {18, 25}}));
  EXPECT_EQ(canvas.edges[3].segment, (PixelSegment{{15, 22}, {15, 28}}));
  ASSERT_EQ(canvas.labels.size(), 1u);
  EXPECT_EQ(canvas.labels[0].text, "roof");
  EXPECT_EQ(canvas.labels[0].place, (PixelPoint{20, 10}));
}

TEST_F(DibViewTest, OverlaysThatCannotShowAreNotDrawn) {
  CDibView& view = Show(SmallImage());
  const double nan = std::numeric_limits<double>::quiet_NaN();
  view.m_points = {1000.0, 1.0, -50.0, 1.0, 1e300, 1e300, 7.0};
  view.m_polylines = {{500, 500, 900, 900}};
  EXPECT_THAT(Drawn(view).edges, IsEmpty());
  view.m_points = {nan, 1.0, 1.0, nan};
  view.m_polylines = {{0, nan, 1, 1}};
  view.m_labels = {{nan, 1, "a"}};
  EXPECT_THAT(Drawn(view).order, ElementsAre("pixels"));
  view.m_showOverlay = 0;
  view.m_points = {1.0, 1.0};
  EXPECT_THAT(Drawn(view).order, ElementsAre("pixels"));
}

TEST_F(DibViewTest, RedrawTellsTheOverlay) {
  CDibView& view = Show(SmallImage());
  view.m_points = {1, 2, 3, 4};
  view.m_labels = {{0, 0, "a"}};
  view.Redraw();
  EXPECT_THAT(ui.EventsWith("overlay"), ElementsAre("overlay: a.lan 2 0 1"));
}

TEST_F(DibViewTest, OfVeryManyLabelsOneIsDrawnInACell) {
  CDibView& view = Show(SmallImage());
  // 20 x 20 pixels, each with labels, in an area of 7 x 25 cells of 64 x 16.
  const auto fill = [&](std::size_t n) {
    view.m_labels.clear();
    for (std::size_t i = 0; i < n; ++i) {
      view.m_labels.push_back(
          {20.0 * static_cast<double>(i % 20), 20.0 * static_cast<double>(i / 20 % 20), "7"});
    }
  };
  fill(5000);
  EXPECT_EQ(Drawn(view).labels.size(), 5000u);
  fill(200000);
  const auto labels = Drawn(view).labels;
  EXPECT_EQ(labels.front().place, (PixelPoint{0, 0})) << "the first of a cell";
  EXPECT_EQ(labels[1].place, (PixelPoint{80, 0}));
  EXPECT_EQ(labels.size(), 6u * 20u) << "380 / 64 is 5, and each 20 pixels there is another row of cells";
}

TEST_F(DibViewTest, LTogglesTheLabels) {
  CDibView& view = Show(SmallImage());
  view.m_labels = {{0, 0, "a"}};
  EXPECT_TRUE(view.OnKeyDown('L', 1));
  EXPECT_EQ(view.m_showLabels, 0);
  EXPECT_THAT(Drawn(view).labels, IsEmpty());
  EXPECT_TRUE(view.OnKeyDown('L', 1));
  EXPECT_EQ(Drawn(view).labels.size(), 1u);
}

TEST_F(DibViewTest, ArrowsMoveTheFirstPointOfTheFirstPolyline) {
  CDibView& view = Show(SmallImage());
  view.m_polylines = {{10, 20, 30, 40}, {50, 60}};
  EXPECT_TRUE(view.OnKeyDown(Key::kLeft, 2));
  EXPECT_TRUE(view.OnKeyDown(Key::kUp, 3));
  EXPECT_THAT(view.m_polylines[0], ElementsAre(8, 17, 30, 40));
  EXPECT_TRUE(view.OnKeyDown(Key::kRight, 1));
  EXPECT_TRUE(view.OnKeyDown(Key::kDown, 1));
  EXPECT_THAT(view.m_polylines[0], ElementsAre(9, 18, 30, 40));
  EXPECT_THAT(view.m_polylines[1], ElementsAre(50, 60));
}

TEST_F(DibViewTest, ArrowsNeedTwoValuesAndPassTheKeyOnWithFewer) {
  CDibView& view = Show(SmallImage());
  EXPECT_FALSE(view.OnKeyDown(Key::kLeft, 1));
  view.m_polylines = {{10}};
  EXPECT_FALSE(view.OnKeyDown(Key::kLeft, 1));
  EXPECT_THAT(view.m_polylines[0], ElementsAre(10));
  view.m_polylines = {{10, 20}};
  EXPECT_FALSE(view.OnKeyDown('K', 1));
}

// A bitmap of 100 x 100 in a window of 50 x 50.
class ZoomTest : public DibViewTest {
 protected:
  void SetUp() override {
    DibViewTest::SetUp();
    view = &OpenBitmapWindow(app.GetMainFrame(), MakeBlackDib(100, 100, 8), "z");
    view->OnSize({50, 50});
  }

  // The bitmap pixel under a place of the client area.
  std::pair<std::int64_t, std::int64_t> Under(PixelPoint place) const {
    const PixelPoint scroll = view->GetScrollPosition();
    return {static_cast<std::int64_t>(static_cast<double>(scroll.x + place.x) / view->m_zoom),
            static_cast<std::int64_t>(static_cast<double>(scroll.y + place.y) / view->m_zoom)};
  }

  CDibView* view = nullptr;
};

TEST_F(ZoomTest, StepsKeepThePixelUnderThePointer) {
  view->SetScrollPosition({20, 30});
  const PixelPoint pointer{31, 17};
  const auto pixel = Under(pointer);
  for (const double zoom : {1.5, 2.0, 3.0, 4.0}) {
    view->OnZoomSteps(1, pointer);
    EXPECT_EQ(view->GetZoom(), zoom);
    EXPECT_EQ(Under(pointer), pixel) << zoom;
  }
  EXPECT_EQ(view->GetScrollSize(), (PixelSize{400, 400}));
  view->OnZoomSteps(-4, pointer);
  EXPECT_EQ(view->GetZoom(), 1.0);
  EXPECT_EQ(Under(pointer), pixel);
}

TEST_F(ZoomTest, IsHeldBetweenItsEnds) {
  view->OnZoomSteps(-100, {});
  EXPECT_EQ(view->GetZoom(), 1.0 / 64);
  EXPECT_EQ(view->GetScrollSize(), (PixelSize{2, 2}));
  view->OnZoomSteps(100, {});
  EXPECT_EQ(view->GetZoom(), 64.0);
  view->SetZoom(0, 1e300);
  EXPECT_EQ(view->GetZoom(), 64.0);
  view->SetZoom(0, -5.0);
  EXPECT_EQ(view->GetZoom(), 1.0 / 64);
  view->SetZoom(0, std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(view->GetZoom(), 1.0 / 64);
}

TEST_F(ZoomTest, SetZoomTakesTheFactorItselfOrMultiplies) {
  view->SetZoom(0, 5.0);
  EXPECT_EQ(view->m_zoom, 5.0);
  view->SetZoom(1, 0.5);
  EXPECT_EQ(view->m_zoom, 2.5);
  view->OnZoomSteps(1, {});
  EXPECT_EQ(view->m_zoom, 3.0);
}

TEST_F(ZoomTest, ItemsOfTheMenu) {
  view->OnZoomItem(ZoomItem::In);
  EXPECT_EQ(view->m_zoom, 1.5);
  view->OnZoomItem(ZoomItem::OneToFive);
  EXPECT_EQ(view->m_zoom, 5.0);
  view->OnZoomItem(ZoomItem::Out);
  EXPECT_EQ(view->m_zoom, 4.0);
  view->OnZoomItem(ZoomItem::OneToOne);
  EXPECT_EQ(view->m_zoom, 1.0);
}

TEST_F(DibViewTest, CopyPutsTheBitmapOnTheClipboard) {
  CDibView& view = Show(SmallImage());
  EXPECT_TRUE(view.IsEnabled(EditItem::Copy));
  EXPECT_FALSE(view.IsEnabled(EditItem::Paste));
  view.OnEditItem(EditItem::Copy);
  EXPECT_EQ(ui.clipboard, view.GetDocument().GetDib());
  EXPECT_FALSE(OpenImageWindow(app.GetMainFrame(), nullptr, "")->IsEnabled(EditItem::Copy));
}

TEST_F(DibViewTest, PasteReplacesThePicture) {
  CDibView& view = Show(SmallImage());
  ui.clipboard = MakeBlackDib(9, 5, 24);
  EXPECT_TRUE(view.IsEnabled(EditItem::Paste));
  view.OnEditItem(EditItem::Paste);
  EXPECT_EQ(view.GetDocument().GetDib(), ui.clipboard);
  EXPECT_EQ(view.GetScrollSize(), (PixelSize{9, 5}));
  EXPECT_TRUE(view.GetDocument().IsModified());
  EXPECT_EQ(Drawn(view).pixels.size(), 45u);
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: 5 rows, 9 columns, 24 bits a pixel.");
  view.m_points = {1, 1};
  view.OnEditItem(EditItem::Paste);
  EXPECT_EQ(view.m_points.size(), 2u);
  EXPECT_EQ(ui.EventsWith("status").back(),
            "status 0: 5 rows, 9 columns, 24 bits a pixel. What lies over the picture stays.");
}

TEST_F(DibViewTest, TheDocumentKnowsTheImageFileThatItShows) {
  ErdasImg image = SmallImage();
  image.SetFileName("deep/a.lan");
  CDibDoc& document = Show(image).GetDocument();
  EXPECT_EQ(document.GetImagePath(), "deep/a.lan");
  EXPECT_EQ(document.GetPathName(), "") << "Save does not write over the image";
  document.SetPathName("copy.bmp", false);
  EXPECT_EQ(document.GetImagePath(), "deep/a.lan") << "saving a copy changes nothing";

  ASSERT_EQ(WriteDib(MakeBlackDib(8, 2, 8), "b.bmp"), 1);
  EXPECT_EQ(OpenBitmapFile(app.GetMainFrame(), "b.bmp")->GetImagePath(), "b.bmp");
  EXPECT_EQ(OpenImageWindow(app.GetMainFrame(), nullptr, "points")->GetDocument().GetImagePath(), "");
}

TEST_F(DibViewTest, ABitmapTakenOverIsNoImageFile) {
  ErdasImg image = SmallImage();
  image.SetFileName("a.lan");
  CDibView& view = Show(image);
  ui.clipboard = MakeBlackDib(8, 2, 8);
  view.OnEditItem(EditItem::Paste);
  EXPECT_EQ(view.GetDocument().GetImagePath(), "");
  view.GetDocument().SetPathName("pasted.bmp", false);
  EXPECT_EQ(view.GetDocument().GetImagePath(), "");
}

TEST_F(DibViewTest, PasteOfWhatIsNoBitmapIsTold) {
  CDibView& view = Show(SmallImage());
  ui.clipboard = {1, 2, 3};
  view.OnEditItem(EditItem::Paste);
  EXPECT_EQ(view.GetScrollSize(), (PixelSize{4, 3}));
  EXPECT_FALSE(view.GetDocument().IsModified());
  EXPECT_EQ(ui.EventsWith("message").size(), 1u);
}

TEST_F(DibViewTest, SavesABitmapFileUnderANameOfItsOwn) {
  CDibView& view = Show(SmallImage());
  ui.files.push_back({"a.bmp"});
  EXPECT_EQ(app.SaveDocument(view.GetDocument(), false), CommandResult::Done);
  EXPECT_EQ(ui.choosers.back().defaultName, "a.bmp");
  EXPECT_EQ(ui.choosers.back().filter, "Bitmap Files (*.bmp)|*.bmp|");
  Dib dib;
  EXPECT_EQ(ReadDib("a.bmp", dib), 1);
  EXPECT_EQ(DibWidth(dib), 4);
  EXPECT_EQ(view.GetTitle(), "a.bmp");
  EXPECT_THAT(app.GetRecentFiles().GetPaths(), IsEmpty());
}

TEST_F(DibViewTest, ASaveThatFailsLeavesTheDocumentItsName) {
  CDibView& view = Show(SmallImage());
  ui.files = {{"no/folder.bmp"}};
  EXPECT_EQ(app.SaveDocument(view.GetDocument(), true), CommandResult::Failed);
  EXPECT_EQ(view.GetTitle(), "a.lan");
  EXPECT_EQ(view.GetDocument().GetPathName(), "");
  ui.files = {{"e.bmp"}};
  CDibView& empty = OpenEmptyWindow(app.GetMainFrame(), {30, 20}, "points");
  EXPECT_EQ(app.SaveDocument(empty.GetDocument(), true), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message"),
              ElementsAre("message warning: Write file no/folder.bmp error!",
                          "message warning: Write file e.bmp error!\nThere is no picture to save."));
}

TEST_F(DibViewTest, AFileThatCannotBeLoadedLeavesTheDocumentEmpty) {
  WriteFileBytes("bad.bmp", "BMxx");
  CDibView& view = Show(SmallImage());
  EXPECT_EQ(view.GetDocument().OnOpenDocument("bad.bmp"), -1);
  EXPECT_FALSE(view.HasPicture());
  EXPECT_EQ(ui.EventsWith("message").size(), 1u);

  EXPECT_EQ(OpenBitmapFile(app.GetMainFrame(), "bad.bmp"), nullptr);
  EXPECT_EQ(app.GetDocuments().size(), 2u) << "no window opens";
  WriteDib(MakeBlackDib(6, 2, 8), "good.bmp");
  CDibDoc* document = OpenBitmapFile(app.GetMainFrame(), "good.bmp");
  ASSERT_NE(document, nullptr);
  EXPECT_EQ(document->GetSize(), (PixelSize{6, 2}));
  EXPECT_EQ(document->GetTitle(), "good.bmp");
}

TEST_F(DibViewTest, PicturesEnlargeSmallBitmapsAndReduceLargeOnes) {
  EXPECT_EQ(Show(SmallImage()).GetPictureSize(), (PixelSize{64, 48}));  // no more than 16-fold
  const auto pictureSize = [&](std::int32_t width, std::int32_t height) {
    return OpenBitmapWindow(app.GetMainFrame(), MakeBlackDib(width, height, 8), "p").GetPictureSize();
  };
  EXPECT_EQ(pictureSize(100, 60), (PixelSize{400, 240}));
  EXPECT_EQ(pictureSize(300, 200), (PixelSize{600, 400}));
  EXPECT_EQ(pictureSize(400, 200), (PixelSize{400, 200}));
  EXPECT_EQ(pictureSize(4000, 30), (PixelSize{4000, 30}));
  EXPECT_EQ(pictureSize(8000, 60), (PixelSize{4000, 30}));
}

}  // namespace
}  // namespace corvane
