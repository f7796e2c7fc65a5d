// What is common to the matching commands: their results, the pair that the view keeps, the display.

#include <gmock/gmock.h>

#include "commands/ImageFixture.h"
#include "commands/MatchingRun.h"
#include "shell/DibView.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MatchingCommandsTest : public ImageCommandsTest {
 protected:
  // Two photos of 64 x 48 pixels with some texture, which the right one shows four columns further left.
  void SetUp() override {
    ImageCommandsTest::SetUp();
    WritePhoto("left", 1000, 0);
    WritePhoto("right", 1020, 4);
  }

  static void WritePhoto(const std::string& name, int x, int shift) {
    std::string bytes = BytesOf(HeaderOf(kPackByte, 1, 64, 48));
    for (int row = 0; row < 48; ++row) {
      for (int col = 0; col < 64; ++col) bytes += static_cast<char>(ToneAt(row, col + shift));
    }
    WriteFileBytes(name + ".lan", bytes);
    WriteFileBytes(name + ".orn", "ORIENTATION n w\n150\n" + std::to_string(x) +
                                      " 2000 1500\n0 0 0\n90 0 0\n0.1 0 -3.15\n0 -0.1 2.35\n0 0\n0.1 0.1\n");
  }

  static unsigned ToneAt(int row, int col) {
    unsigned tone = static_cast<unsigned>(row * 977 + col * 7919);
    tone = (tone ^ (tone >> 7)) * 2654435761U;
    return tone >> 24;
  }

  static std::function<bool(Form&)> PairForm(const std::string& points) {
    return Enter({{"leftImage", "left.lan"},
                  {"rightImage", "right.lan"},
                  {"matchedPoints", points},
                  {"windowWidth", "7"},
                  {"windowHeight", "7"},
                  {"maxDisparity", "8"},
                  {"groundSpacing", "1"}});
  }

  StereoPair& Pair() { return app.GetMainFrame().GetTinView()->stereoPair; }

  // A pair with its photos in memory and these places.
  void LoadPairWith(const std::vector<MatchPair>& pairs) {
    Pair().SetImagePaths("left.lan", "right.lan");
    ASSERT_EQ(Pair().LoadPair(), 1);
    Pair().matchPairs = pairs;
    ui.events.clear();
  }

  std::vector<std::string> OpenedWindows() const { return ui.EventsWith("open-window"); }
};

const std::vector<MatchPair> kTwoPairs = {{7, {10.0, 5.0}, {6.0, 5.0}, 0.9},
                                          {8, {20.5, 9.25}, {17.0, 9.0}, 0.8}};

TEST_F(MatchingCommandsTest, CancelOfTheFormLeavesNothing) {
  const auto before = Files();
  for (const char* const command :
       {"Area (Correlation Coeff)", "Area (Difference)", "Area (Feature CC)", "Structural Descriptor CC",
        "Two-Way Match", "Area Correlation", "Matching > Exams > Exam Truth",
        "Utilities > Exams > Exam Truth", "Space Intersection"}) {
    ui.events.clear();
    EXPECT_EQ(Run(command), CommandResult::Cancelled) << command;
    EXPECT_THAT(ui.EventsWith("form"), ElementsAre("form: MatchInput")) << command;
    EXPECT_THAT(Messages(), IsEmpty()) << command;
    EXPECT_EQ(Files(), before) << command;
    EXPECT_EQ(ui.waitDepth, 0) << command;
  }
}

TEST_F(MatchingCommandsTest, EntropyMapAsksForAnImageWithoutTheForm) {
  EXPECT_EQ(Run("Entropy Map"), CommandResult::Cancelled);
  ExpectChoosers({{kOpen, "Image Files (*.lan)|*.lan|All Files (*.*)|*.*|", "Choose a Image."}});
  EXPECT_THAT(ui.EventsWith("form"), IsEmpty());
}

TEST_F(MatchingCommandsTest, TheViewKeepsThePairFromOneCommandToTheNext) {
  ui.forms = {PairForm("a.pts"), PairForm("b.pts")};
  ui.values = {-4.0, -4.0};
  ASSERT_EQ(Run("Area (Correlation Coeff)"), CommandResult::Done);
  const std::size_t nFirst = HeightsIn("a.pts").size();
  EXPECT_GT(nFirst, 0U);
  ASSERT_EQ(Run("Area (Correlation Coeff)"), CommandResult::Done);
  EXPECT_EQ(HeightsIn("b.pts").size(), 2 * nFirst);
  EXPECT_EQ(Pair().progressWindow, nullptr);
}

TEST_F(MatchingCommandsTest, ProgressStandsInTheMessagePane) {
  ui.forms = {PairForm("a.pts")};
  ASSERT_EQ(Run("Area (Correlation Coeff)"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("status 0: Done "), testing::Contains("status 0: Done 0% ..."));
}

TEST_F(MatchingCommandsTest, AMissingImageFailsInItsOwnWords) {
  std::filesystem::remove("right.lan");
  ui.forms = {PairForm("a.pts")};
  EXPECT_EQ(Run("Area (Correlation Coeff)"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Open file right.lan error!",
                                      "message message: Open Right Image error!"));
}

TEST_F(MatchingCommandsTest, PairsAreDrawnOverBothImagesAndNumbered) {
  LoadPairWith(kTwoPairs);
  ShowMatchPairs(app.GetMainFrame(), Pair());
  EXPECT_THAT(OpenedWindows(), ElementsAre("open-window: left.lan", "open-window: right.lan"));
  const CDibView* const right = app.GetMainFrame().GetDibView();
  ASSERT_NE(right, nullptr);
  EXPECT_THAT(right->m_points, ElementsAre(6.0, 5.0, 17.0, 9.0));
  ASSERT_EQ(right->m_labels.size(), 2U);
  EXPECT_EQ(right->m_labels[0].text, "7");
  EXPECT_EQ(right->m_labels[1].text, "8");
  EXPECT_EQ(right->m_labels[1].x, 17.0);
  EXPECT_EQ(right->m_labels[1].y, 9.0);
  EXPECT_THAT(ui.EventsWith("overlay"), testing::SizeIs(testing::Ge(2U)));
}

TEST_F(MatchingCommandsTest, WithoutPairsOrPhotosNothingIsShown) {
  LoadPairWith({});
  ShowMatchPairs(app.GetMainFrame(), Pair());
  Pair().matchPairs = kTwoPairs;
  Pair().FreePair();
  ShowMatchPairs(app.GetMainFrame(), Pair());
  EXPECT_THAT(OpenedWindows(), IsEmpty());
}

TEST_F(MatchingCommandsTest, AMethodWithDisplayShowsItsPairsAndLetsThePhotosGo) {
  LoadPairWith(kTwoPairs);
  CCorvaneView& view = *app.GetMainFrame().GetTinView();
  EXPECT_EQ(RunMatchingWithDisplay(view, &StereoPair::InitGeometry), CommandResult::Done);
  EXPECT_EQ(OpenedWindows().size(), 2U);
  EXPECT_EQ(Pair().leftPhoto, nullptr);

  ui.events.clear();
  EXPECT_EQ(RunMatchingWithDisplay(view, &StereoPair::InitGeometry), CommandResult::Cancelled);  // -1
  EXPECT_THAT(OpenedWindows(), IsEmpty()) << "the photos are gone";
}

TEST_F(MatchingCommandsTest, AMethodWithDisplayShowsItsPairsWhateverItsResult) {
  LoadPairWith(kTwoPairs);
  ASSERT_EQ(Pair().dem, nullptr);
  CCorvaneView& view = *app.GetMainFrame().GetTinView();
  EXPECT_EQ(RunMatchingWithDisplay(view, &StereoPair::ExtentFromDem), CommandResult::Cancelled);  // -1
  EXPECT_EQ(OpenedWindows().size(), 2U);
  EXPECT_EQ(Pair().leftPhoto, nullptr);
}

TEST_F(MatchingCommandsTest, TestReadsTheFileOfItsRoutine) {
  EXPECT_EQ(Run("Test"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("status"), IsEmpty());
  WriteFileBytes("matchPt.txt", "0, 1, 2, 3, 4, 0.5\n1, 1, 2, 3, 4, 0.5\n");
  EXPECT_EQ(Run("Test"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: matchPt.txt: 2 pairs."));
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST(MatchingResult, OnlyACancelledPromptIsACancelledCommand) {
  EXPECT_EQ(ResultOfMatching(StereoPair::kDone), CommandResult::Done);
  EXPECT_EQ(ResultOfMatching(StereoPair::kCancelled), CommandResult::Cancelled);
  for (const int status : {StereoPair::kNotLoaded, StereoPair::kNoGeometry, StereoPair::kNoExtent,
                           StereoPair::kNotWritten, StereoPair::kNoInput}) {
    EXPECT_EQ(ResultOfMatching(status), CommandResult::Failed) << status;
  }
}

}  // namespace
}  // namespace corvane
