// Showing images, points over them, rows of them, and stereograms, end to end.

#include "commands/ImageFixture.h"
#include "dib/DibIo.h"
#include "shell/DibView.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ShowCommandsTest : public ImageCommandsTest {
 protected:
  CDibView* Window() { return app.GetMainFrame().GetDibView(); }

  std::vector<GraphPoint> Curve() {
    const auto elements = app.GetMainFrame().GetTinView()->graph.GetElements();
    return elements.empty() ? std::vector<GraphPoint>() : elements[0].points;
  }

  void StoreBytes(const std::string& name) {
    WriteFileBytes(name, LanOf<std::uint8_t>(kPackByte, 4, 2, {1, 2, 3, 4, 50, 60, 70, 80}));
  }
};

TEST_F(ShowCommandsTest, ShowImageOpensAWindowNamedForTheFile) {
  std::filesystem::create_directory("deep");
  StoreBytes("deep/a.lan");
  ui.files = {{"deep/a.lan"}};
  EXPECT_EQ(Run("Show Image"), CommandResult::Done);
  ExpectChoosers({{kOpen, "Image Files (*.lan)|*.lan|All Files (*.*)|*.*||", "Please choose an image"}});
  ASSERT_NE(Window(), nullptr);
  EXPECT_EQ(Window()->GetTitle(), "a.lan");
  EXPECT_EQ(Window()->GetScrollSize(), (PixelSize{4, 2}));
  EXPECT_EQ(Window()->m_showOverlay, 1);
  EXPECT_EQ(Window()->m_zoom, 1.0);
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: 2 rows, 4 columns, 1 band.");
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(ShowCommandsTest, ShowImageOfFloatsTellsThatBytesAreShown) {
  WriteFileBytes("f.lan", LanOf<float>(kPackFloat, 1, 1, {1.5f}));
  ui.files = {{"f.lan"}};
  EXPECT_EQ(Run("Show Image"), CommandResult::Done);
  EXPECT_EQ(ui.EventsWith("status").back(),
            "status 0: 1 row, 1 column, 1 band. The lowest byte of each pixel is shown.");
}

TEST_F(ShowCommandsTest, ShowImageFailsWithoutAnImage) {
  ExpectFailure("Show Image", {{"none.lan"}}, {"message warning: Open file none.lan error!"});
  ExpectFailure("Show Image", {{""}}, {"message warning: Open file  error!"});
  WriteFileBytes("zero.lan", BytesOf(HeaderOf(kPackByte, 1, 0, 5)));
  ExpectFailure("Show Image", {{"zero.lan"}},
                {"message warning: Open file zero.lan error!\nIts header gives no rows, columns or bands."});
  EXPECT_EQ(Window(), nullptr);
}

TEST_F(ShowCommandsTest, CancelShowsNothing) {
  for (const char* command : {"Show Image", "Show Points", "Image Profile", "StereoGram"}) {
    EXPECT_EQ(Run(command), CommandResult::Cancelled) << command;
  }
  EXPECT_EQ(Window(), nullptr);
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(ShowCommandsTest, ShowPointsGoToTheWindowThatIsOpen) {
  StoreBytes("a.lan");
  WriteFileBytes("p.txt", "0, 1, 0\n1, 2.5, 1.5\n");
  ui.files = {{"a.lan"}, {"p.txt"}, {"p.txt"}};
  ASSERT_EQ(Run("Show Image"), CommandResult::Done);
  CDibView* window = Window();
  window->m_showOverlay = 0;
  EXPECT_EQ(Run("Show Points"), CommandResult::Done);
  EXPECT_EQ(ui.choosers.back().filter, "Points Files (*.txt)|*.txt|All Files (*.*)|*.*|");
  EXPECT_EQ(Window(), window);
  EXPECT_THAT(window->m_points, ElementsAre(1, 0, 2.5, 1.5));
  EXPECT_EQ(window->m_showOverlay, 1);
  EXPECT_THAT(ui.EventsWith("overlay"), ElementsAre("overlay: a.lan 2 0 0"));
  EXPECT_EQ(Run("Show Points"), CommandResult::Done);
  EXPECT_EQ(window->m_points.size(), 4u) << "points that are set take the place of those before";
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(ShowCommandsTest, ShowPointsOpenAnEmptyWindowOfTheBoundingSize) {
  WriteFileBytes("p.txt", "0, 1, 40.7\n1, 30.2, 5\n");
  ui.files = {{"p.txt"}};
  EXPECT_EQ(Run("Show Points"), CommandResult::Done);
  ASSERT_NE(Window(), nullptr);
  EXPECT_EQ(Window()->GetTitle(), "p.txt");
  EXPECT_EQ(Window()->GetScrollSize(), (PixelSize{31, 41}));
  EXPECT_TRUE(Window()->HasPicture());
  EXPECT_TRUE(Window()->GetDocument().GetDib().empty());
}

TEST_F(ShowCommandsTest, ShowPointsTellsWhatItCanNotOpen) {
  ExpectFailure("Show Points", {{"none.txt"}}, {"message warning: Open point file none.txt error!"});
  WriteFileBytes("letter.txt", "this is a letter\n");
  ExpectFailure("Show Points", {{"letter.txt"}}, {"message warning: Open point file letter.txt error!"});
  EXPECT_EQ(Window(), nullptr);
  StoreBytes("a.lan");
  ui.files = {{"a.lan"}};
  ASSERT_EQ(Run("Show Image"), CommandResult::Done);
  Window()->m_points = {1, 1};
  ExpectFailure("Show Points", {{"letter.txt"}}, {"message warning: Open point file letter.txt error!"});
  EXPECT_EQ(Window()->m_points.size(), 2u) << "the points shown stay";
}

TEST_F(ShowCommandsTest, ShowPointsOfOddNumbersDoNoHarm) {
  WriteFileBytes("p.txt", "0, nan, inf\n1, -1e300, 1e300\n");
  ui.files = {{"p.txt"}};
  EXPECT_EQ(Run("Show Points"), CommandResult::Done);
  EXPECT_GT(Window()->GetPictureSize().width, 0);
  EXPECT_LE(Window()->GetPictureSize().width, 4000);
}

TEST_F(ShowCommandsTest, ProfileAsksForTheImageOnceAndForARowEachTime) {
  StoreBytes("a.lan");
  ui.files = {{"a.lan"}};
  ui.values = {1, 0};
  EXPECT_EQ(Run("Image Profile"), CommandResult::Done);
  ExpectChoosers({{kOpen, "Image Files (*.lan)|*.lan|All Files (*.*)|*.*|", "Choose an Image."}});
  EXPECT_THAT(ui.EventsWith("value"), ElementsAre("value: Input the row#(0-3) 530"))
      << "the bound is that of the columns";
  EXPECT_THAT(ui.EventsWith("open-window"), ElementsAre("open-window: a.lan"));
  EXPECT_THAT(Curve(),
              ElementsAre(GraphPoint{0, 50}, GraphPoint{1, 60}, GraphPoint{2, 70}, GraphPoint{3, 80}));
  EXPECT_EQ(app.GetMainFrame().GetActiveView(), app.GetMainFrame().GetTinView()) << "the graph is in front";

  EXPECT_EQ(Run("Image Profile"), CommandResult::Done);
  EXPECT_EQ(ui.choosers.size(), 1u);
  EXPECT_EQ(ui.EventsWith("open-window").size(), 1u);
  const auto elements = app.GetMainFrame().GetTinView()->graph.GetElements();
  ASSERT_EQ(elements.size(), 2u) << "each row is a curve of its own";
  EXPECT_THAT(elements[1].points,
              ElementsAre(GraphPoint{0, 1}, GraphPoint{1, 2}, GraphPoint{2, 3}, GraphPoint{3, 4}));
  EXPECT_NE(elements[0].colour, elements[1].colour);
}

TEST_F(ShowCommandsTest, ProfileOfFloatsShowsAbsoluteValuesWithoutAWindow) {
  WriteFileBytes("f.lan", LanOf<float>(kPackFloat, 3, 1, {-1.5f, 2.5f, -0.0f}));
  ui.files = {{"f.lan"}};
  ui.values = {0.9};  // cut to 0
  EXPECT_EQ(Run("Image Profile"), CommandResult::Done);
  EXPECT_THAT(Curve(), ElementsAre(GraphPoint{0, 1.5}, GraphPoint{1, 2.5}, GraphPoint{2, 0}));
  EXPECT_EQ(Window(), nullptr);
}

TEST_F(ShowCommandsTest, ProfileOfOtherTypesIsNotSupported) {
  WriteFileBytes("s.lan", LanOf<std::int16_t>(kPackInt16, 2, 1, {1, 2}));
  ui.values = {0};
  ExpectFailure("Image Profile", {{"s.lan"}}, {"message message: Data type is not supported!"});
  EXPECT_THAT(Curve(), IsEmpty());
  StoreBytes("a.lan");
  ui.files = {{"a.lan"}};
  ui.values = {0};
  EXPECT_EQ(Run("Image Profile"), CommandResult::Done) << "another image can be chosen";
}

TEST_F(ShowCommandsTest, ProfileRefusesRowsThatAreNotThere) {
  StoreBytes("a.lan");
  for (const double row : {2.0, 530.0, -1.0, 1e300, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
    ui.values = {row};
    ExpectFailure("Image Profile", {{"a.lan"}},
                  {"message warning: There is no such row: the rows of a.lan are 0 to 1."});
  }
}

TEST_F(ShowCommandsTest, ProfileCancelledAtTheRowKeepsTheImage) {
  StoreBytes("a.lan");
  ui.files = {{"a.lan"}};
  EXPECT_EQ(Run("Image Profile"), CommandResult::Cancelled);
  ui.values = {0};
  EXPECT_EQ(Run("Image Profile"), CommandResult::Done);
  EXPECT_EQ(ui.choosers.size(), 1u);
}

TEST_F(ShowCommandsTest, ProfileAsksAgainForAnImageThatDidNotRead) {
  ExpectFailure("Image Profile", {{"none.lan"}}, {"message warning: Open file none.lan error!"});
  StoreBytes("a.lan");
  ui.files = {{"a.lan"}};
  ui.values = {0};
  EXPECT_EQ(Run("Image Profile"), CommandResult::Done);
}

TEST_F(ShowCommandsTest, StereoGramWritesAndShowsThePicture) {
  std::filesystem::create_directory("deep");
  Dib depths = MakeBlackDib(300, 3, 8);
  ASSERT_EQ(WriteDib(depths, "deep/z.bmp"), 1);
  ui.files = {{"deep/z.bmp"}};
  EXPECT_EQ(Run("StereoGram"), CommandResult::Done);
  ASSERT_EQ(ui.choosers.size(), 1u);
  EXPECT_EQ(ui.choosers[0].filter,
            "Bitmap Files (*.bmp)|*.bmp|Image File Type (*.dib)|*.DIB|\t\t\t\t\t\tAll Files (*.*)|*.*|");
  EXPECT_EQ(ui.choosers[0].defaultExtension, ".BMP");
  EXPECT_THAT(ui.EventsWith("open-window"), ElementsAre("open-window: z.bmp", "open-window: z_SRD.bmp"));
  EXPECT_THAT(Files(), ElementsAre("deep", "z_SRD.bmp")) << "in the current folder";
  Dib written;
  ASSERT_EQ(ReadDib("z_SRD.bmp", written), 1);
  EXPECT_EQ(written, Window()->GetDocument().GetDib());
  EXPECT_EQ(Window()->m_zoom, 1.0);
  EXPECT_NE(written, depths);
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(ShowCommandsTest, StereoGramRunsWithoutADocument) {
  ASSERT_EQ(Run("File > Close"), CommandResult::Done);
  ASSERT_EQ(WriteDib(MakeBlackDib(20, 2, 8), "z.bmp"), 1);
  ui.files = {{"z.bmp"}};
  EXPECT_EQ(Run("StereoGram"), CommandResult::Done);
}

TEST_F(ShowCommandsTest, StereoGramTellsFilesThatItCanNotTake) {
  ExpectFailure("StereoGram", {{"none.bmp"}}, {"message warning: Open file none.bmp error!"});
  ASSERT_EQ(WriteDib(MakeBlackDib(20, 2, 1), "one.bmp"), 1);
  ExpectFailure("StereoGram", {{"one.bmp"}},
                {"message warning: A depth image has 8 or 24 bits a pixel; this one has 1."});
}

}  // namespace
}  // namespace corvane
