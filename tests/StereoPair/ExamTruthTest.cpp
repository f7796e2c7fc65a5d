// "Exam Truth".

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>

#include "StereoPair/PlainMasked.h"
#include "support/SharedData.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kNone = -128.0;
constexpr const char* kNotWritten = " The smoothed maps are not written before pass 200. Written: ";
constexpr int kCols = 34;
constexpr int kRows = 22;

// The command in its plainest form: each pass looks at every pixel.
struct PlainExam {
  PlainExam(const StereoPair& pair, std::function<double(int, int)> truthOf)
      : pair_(pair), truthOf_(std::move(truthOf)) {
    const auto [cols, rows] = pair.leftImage->GetSize();
    nCols = cols;
    disparities.resize(static_cast<std::size_t>(cols) * static_cast<std::size_t>(rows));
    scores.resize(disparities.size());
    truthScores.resize(disparities.size());
    ForEachPlace([this](int row, int col) { SearchAround(row, col); });
  }

  template <typename Visit>
  void ForEachPlace(Visit visit) const {
    const auto [cols, rows] = pair_.leftImage->GetSize();
    const int halfW = pair_.targetWidth / 2;
    const int halfH = pair_.targetHeight / 2;
    for (int row = halfH + 1; row < rows - halfH - 1; ++row) {
      for (int col = halfW + 1; col < cols - halfW - 1; ++col) visit(row, col);
    }
  }

  std::size_t At(int row, int col) const { return static_cast<std::size_t>(row * nCols + col); }

  void SearchAround(int row, int col) {
    const double truth = truthOf_(row, col);
    disparities[At(row, col)] = static_cast<std::int16_t>(kNone);
    if (!std::isfinite(truth) || truth == kNone) return;
    truthScores[At(row, col)] = static_cast<float>(PlainMasked(pair_, row, col, truthOf_));
    const int halfW = pair_.targetWidth / 2;
    const int halfH = pair_.targetHeight / 2;
    const auto compareAt = [&](double x) {
      return PlainCompare(pair_, row - halfH, col - halfW, row - halfH,
                          static_cast<std::int64_t>(std::trunc(x - halfW)));
    };
    double best = col - truth;
    double bestScore = compareAt(best);
    const int range = static_cast<int>(pair_.demAccuracy);
    for (int offset = -range; offset <= range; ++offset) {
      const double score = offset == 0 ? -2.0 : compareAt(col - truth + offset);
      if (score <= bestScore) continue;
      bestScore = score;
      best = col - truth + offset;
    }
    scores[At(row, col)] = static_cast<float>(bestScore);
    if (bestScore >= pair_.matchThreshold) {
      disparities[At(row, col)] = static_cast<std::int16_t>(col - best);
    }
  }

  int RunPass() {
    int nUpdated = 0;
    ForEachPlace([&](int row, int col) {
      const auto mean = MeanAround(row, col);
      if (!mean || *mean == disparities[At(row, col)]) return;
      const auto disparityOf = [&](int y, int x) -> double {
        return y == row && x == col ? *mean : disparities[At(y, x)];
      };
      if (PlainMasked(pair_, row, col, disparityOf) <= double{scores[At(row, col)]}) return;
      disparities[At(row, col)] = *mean;
      ++nUpdated;
    });
    return nUpdated;
  }

  std::optional<std::int16_t> MeanAround(int row, int col) const {
    double sum = 0.0;
    int n = 0;
    for (int dRow = -1; dRow <= 1; ++dRow) {
      for (int dCol = -1; dCol <= 1; ++dCol) {
        const std::int16_t disparity = disparities[At(row + dRow, col + dCol)];
        if ((dRow == 0 && dCol == 0) || disparity == -128) continue;
        sum += disparity;
        ++n;
      }
    }
    if (n == 0) return std::nullopt;
    return static_cast<std::int16_t>(std::trunc(sum / n + 0.5));
  }

  int nCols = 0;
  std::vector<std::int16_t> disparities;
  std::vector<float> scores;
  std::vector<float> truthScores;

 private:
  const StereoPair& pair_;
  std::function<double(int, int)> truthOf_;
};

template <typename Pixel>
void ExpectFile(const std::string& path, const std::vector<Pixel>& expected) {
  ErdasImg image;
  ASSERT_EQ(image.Read(path), 1) << path;
  SCOPED_TRACE(path);
  ExpectBytes(image, expected);
}

class ExamTruth : public testing::Test {
 protected:
  // Runs the command on these images, and the plain form beside it.
  void Run(const std::vector<std::uint8_t>& left, const std::vector<std::uint8_t>& right, ErdasImg truth,
           double accuracy = 2.0, double threshold = 0.75, int cols = kCols, int rows = kRows) {
    VerticalPair made(cols, rows, left, right);
    made.pair.targetWidth = 5;
    made.pair.targetHeight = 3;
    made.pair.demAccuracy = accuracy;
    made.pair.matchThreshold = threshold;
    Store(made);
    ASSERT_EQ(truth.Write("truth.lan"), 1);
    frontEnd_.forms = {FilledForm([&](Form& form) {
      form.Find("demFile")->value = std::string("truth.lan");
      form.Find("demAccuracy")->value = accuracy;
      form.Find("matchThreshold")->value = threshold;
    })};
    ASSERT_EQ(pair_.ExamTruth(), StereoPair::kDone);
    ExpectPlain(PlainExam(made.pair, [&](int row, int col) { return PixelAt(truth, row, col); }));
  }

  // Both photos, for the form.
  static void Store(VerticalPair& made) {
    StorePhoto(made.left, "left");
    StorePhoto(made.right, "right");
  }
  static void Store(VerticalPair&& made) { Store(made); }

  // Runs the command with a window that is larger than the images to this side.
  void RunWithLargeWindow(const std::string& side) {
    Store(VerticalPair(kCols, kRows));
    Truth(0.0, 0.0, 1).Write("truth.lan");
    frontEnd_.forms = {FilledForm([&side](Form& form) {
      form.Find("demFile")->value = std::string("truth.lan");
      form.Find(side)->value = std::int64_t{10000};
    })};
    pair_.progressWindow = &frontEnd_;
    EXPECT_EQ(pair_.ExamTruth(), StereoPair::kDone);
  }

  void ExpectPlain(PlainExam plain) {
    ExpectFile("MeasureMap.lan", plain.scores);
    ExpectFile("DispTrueNew.lan", plain.disparities);
    ExpectFile("MeasureMap_Disp.lan", plain.truthScores);
    nUpdates_ = 0;
    nPasses_ = 0;
    for (int nUpdated = 1; nUpdated > 0 && nPasses_ < 1000;) {
      nUpdated = plain.RunPass();
      nUpdates_ += nUpdated;
      if (++nPasses_ % 200 != 0) continue;
      ExpectFile("MeasureMap" + std::to_string(nPasses_) + ".lan", plain.scores);
      ExpectFile("DispTrueNew" + std::to_string(nPasses_) + ".lan", plain.disparities);
    }
    ASSERT_TRUE(pair_.disparityMap && pair_.measureMap);
    ExpectBytes(*pair_.disparityMap, plain.disparities);
    ExpectBytes(*pair_.measureMap, plain.scores);
    EXPECT_THAT(frontEnd_.events.back(), HasSubstr(" Passes of smoothing: " + std::to_string(nPasses_) +
                                                   ", updates: " + std::to_string(nUpdates_) + "." +
                                                   (nPasses_ < 200 ? kNotWritten : " Written: ")));
  }

  // A truth of `disparity`, with errors of up to `error` columns; every twentieth pixel or so has none.
  static ErdasImg Truth(double disparity, double error, unsigned seed, int cols = kCols, int rows = kRows) {
    std::mt19937 random(seed);
    std::vector<double> values(static_cast<std::size_t>(cols * rows));
    for (double& value : values) {
      const double share = static_cast<double>(random() % 1001) / 500.0 - 1.0;
      value = random() % 20 == 0 ? (random() % 2 == 0 ? kNone : kNaN) : disparity + error * share;
    }
    return FloatImage(cols, rows, values);
  }

  TempFolder folder_;
  TestFrontEnd frontEnd_;
  StereoPair pair_;
  int nPasses_ = 0;
  int nUpdates_ = 0;
};

TEST_F(ExamTruth, MapsAreThoseOfThePlainForm) {
  const auto left = Noise(kCols * kRows, 1);
  auto right = Moved(left, kCols, 0, -6);
  for (std::size_t i = 0; i < right.size(); i += 4) right[i] = static_cast<std::uint8_t>(right[i] ^ 0x55);
  Run(left, right, Truth(6.0, 3.0, 2), 3.9);
  EXPECT_GT(nUpdates_, 0) << "the test smoothes";
}

TEST_F(ExamTruth, MapsOfUnlikeImagesAreThoseOfThePlainForm) {
  for (unsigned seed = 0; seed < 30; ++seed) {
    Run(Noise(kCols * kRows, seed), Noise(kCols * kRows, seed + 100), Truth(3.0, 9.0, seed), seed % 3,
        0.1 * (seed % 5));
  }
}

TEST_F(ExamTruth, DisparitiesMayBeNegative) {
  const auto left = Noise(kCols * kRows, 1);
  Run(left, Noise(kCols * kRows, 3), Truth(-130.0, 4.0, 5), 0.0, -2.0);
  Run(left, Moved(left, kCols, 0, 2), Truth(-2.0, 3.0, 5), 1.0, 0.0);
}

TEST_F(ExamTruth, TruthMayBeSmallerThanTheImage) {
  const auto left = Noise(kCols * kRows, 7);
  Run(left, Moved(left, kCols, 0, -3), Truth(3.0, 1.0, 4, 20, 12));
  EXPECT_EQ(PixelAt(*pair_.disparityMap, 15, 10), kNone);
  EXPECT_EQ(PixelAt(*pair_.measureMap, 15, 10), 0.0);
}

TEST_F(ExamTruth, HugeTruthIsFarAway) {
  ErdasImg truth = Truth(1.0, 0.0, 4);
  truth.SetPixel(0, 8, 8, 1e38);
  truth.SetPixel(0, 8, 9, -1e38);
  truth.SetPixel(0, 9, 9, std::numeric_limits<double>::infinity());
  const auto left = Noise(kCols * kRows, 7);
  Store(VerticalPair(kCols, kRows, left, left));
  truth.Write("truth.lan");
  frontEnd_.forms = {FilledForm([&](Form& form) { form.Find("demFile")->value = std::string("truth.lan"); })};
  ASSERT_EQ(pair_.ExamTruth(), StereoPair::kDone);
  ErdasImg disparities;
  ASSERT_EQ(disparities.Read("DispTrueNew.lan"), 1);
  for (const int col : {8, 9}) EXPECT_EQ(PixelAt(disparities, 8, col), kNone);
  EXPECT_EQ(PixelAt(disparities, 9, 9), kNone);
}

TEST_F(ExamTruth, AfterTwoHundredPassesTheMapsAreWritten) {
  // The right image is the opposite of the left one, so that all scores are low at first, and disparities
  // spread slowly from the border.
  const int cols = 260;
  const int rows = 130;
  const int disparity = 20;
  const auto left = Noise(static_cast<std::size_t>(cols * rows), 7);
  auto right = Moved(left, cols, 0, -disparity);
  std::transform(right.begin(), right.end(), right.begin(), [](int pixel) { return 255 - pixel; });
  Run(left, right, FloatImage(cols, rows, std::vector<double>(left.size(), disparity)), 0.0, -2.0, cols,
      rows);
  EXPECT_GT(nPasses_, 200);
  EXPECT_TRUE(std::filesystem::exists("DispTrueNew200.lan"));
  EXPECT_FALSE(std::filesystem::exists("DispTrueNew400.lan"));
  EXPECT_THAT(frontEnd_.events.back(),
              HasSubstr("MeasureMap_Disp.lan, MeasureMap200.lan, DispTrueNew200.lan."));
}

TEST_F(ExamTruth, TellsUpdatesOncePass) {
  pair_.progressWindow = &frontEnd_;
  const auto left = Noise(kCols * kRows, 1);
  Run(left, Moved(left, kCols, 0, -6), Truth(6.0, 3.0, 2), 3.0);
  const auto told = frontEnd_.EventsWith("status 0: Updated ");
  ASSERT_EQ(told.size(), static_cast<std::size_t>(nPasses_));
  EXPECT_EQ(told.back(), "status 0: Updated 0, Done 0% ...");
  EXPECT_THAT(frontEnd_.EventsWith("status 0: Done 0% ..."), testing::SizeIs(1));
}

TEST_F(ExamTruth, BeginsWithItsOwnNumbers) {
  pair_.matchThreshold = 0.1;
  EXPECT_EQ(pair_.ExamTruth(), StereoPair::kCancelled);
  ASSERT_EQ(frontEnd_.shownForms.size(), 1u);
  EXPECT_EQ(frontEnd_.shownForms[0].GetReal("matchThreshold"), 0.75);
  EXPECT_EQ(frontEnd_.shownForms[0].GetInteger("maxDisparity"), 16);
  EXPECT_EQ(frontEnd_.events.size(), 1u);
  EXPECT_TRUE(std::filesystem::is_empty(folder_.GetPath()));
}

TEST_F(ExamTruth, WithoutADemItEnds) {
  Store(VerticalPair(kCols, kRows));
  frontEnd_.forms = {FilledForm()};
  EXPECT_EQ(pair_.ExamTruth(), StereoPair::kNoInput);
  EXPECT_THAT(frontEnd_.events, ElementsAre("form: MatchInput",
                                            "status 0: No DEM is named: it is to be the true disparity map.",
                                            "message message: Open DEM file error!"));
  EXPECT_EQ(pair_.leftPhoto, nullptr);
  EXPECT_EQ(frontEnd_.waitDepth, 0);
  EXPECT_FALSE(std::filesystem::exists("MeasureMap.lan"));
}

TEST_F(ExamTruth, DemThatDoesNotOpenEndsIt) {
  Store(VerticalPair(kCols, kRows));
  frontEnd_.forms = {FilledForm([](Form& form) { form.Find("demFile")->value = std::string("no.lan"); })};
  EXPECT_EQ(pair_.ExamTruth(), StereoPair::kNotLoaded);
  EXPECT_EQ(pair_.leftPhoto, nullptr);
}

TEST_F(ExamTruth, ResultThatReplacesTheTruthIsRefused) {
  Store(VerticalPair(kCols, kRows));
  for (const std::string path : {"DispTrueNew.lan", "MeasureMap400.lan"}) {
    Truth(0.0, 0.0, 1).Write(path);
    const std::string before = ReadFileBytes(path);
    frontEnd_.events.clear();
    frontEnd_.forms = {FilledForm([&](Form& form) { form.Find("demFile")->value = path; })};
    EXPECT_EQ(pair_.ExamTruth(), StereoPair::kNotWritten);
    EXPECT_THAT(frontEnd_.EventsWith("message"),
                ElementsAre("message warning: Write file " + path +
                            " error!\nIt is one of the files that the command reads."));
    EXPECT_EQ(ReadFileBytes(path), before);
    std::filesystem::remove(path);
  }
  EXPECT_FALSE(std::filesystem::exists("MeasureMap.lan"));
}

TEST_F(ExamTruth, ResultThatCannotBeWrittenIsTold) {
  Store(VerticalPair(kCols, kRows));
  Truth(0.0, 0.0, 1).Write("truth.lan");
  std::filesystem::create_directory("DispTrueNew.lan");
  frontEnd_.forms = {FilledForm([](Form& form) { form.Find("demFile")->value = std::string("truth.lan"); })};
  EXPECT_EQ(pair_.ExamTruth(), StereoPair::kNotWritten);
  EXPECT_THAT(frontEnd_.EventsWith("message"), ElementsAre(HasSubstr("Write file DispTrueNew.lan error!")));
  EXPECT_THAT(frontEnd_.events.back(), HasSubstr(" Written: MeasureMap.lan, MeasureMap_Disp.lan."));
}

TEST_F(ExamTruth, WindowLargerThanTheImageMatchesNothing) {
  RunWithLargeWindow("windowHeight");
  EXPECT_THAT(frontEnd_.EventsWith("status"),
              ElementsAre("status 0: There is no place to match in the left image. Written: MeasureMap.lan, "
                          "DispTrueNew.lan, MeasureMap_Disp.lan."));
}

TEST_F(ExamTruth, WindowWiderThanTheImageTellsNoProgress) {
  RunWithLargeWindow("windowWidth");
  EXPECT_EQ(frontEnd_.EventsWith("status").size(), 1u);
}

// Windows of one pixel are flat and score 1.0, but for a masked score one pixel is too few.
TEST_F(ExamTruth, MaskedScoreOfOnePixelIsNotAboveThatOfAPixelWithoutTruth) {
  const auto left = Noise(kCols * kRows, 1);
  Store(VerticalPair(kCols, kRows, left, left));
  std::vector<double> values(left.size(), 1.0);
  values[8 * kCols + 9] = kNone;
  FloatImage(kCols, kRows, values).Write("truth.lan");
  for (const double threshold : {1.0, std::nextafter(1.0, 2.0)}) {
    frontEnd_.forms = {FilledForm([threshold](Form& form) {
      form.Find("demFile")->value = std::string("truth.lan");
      form.Find("windowWidth")->value = std::int64_t{1};
      form.Find("windowHeight")->value = std::int64_t{1};
      form.Find("matchThreshold")->value = threshold;
    })};
    ASSERT_EQ(pair_.ExamTruth(), StereoPair::kDone);
    EXPECT_EQ(PixelAt(*pair_.disparityMap, 8, 9), kNone);
    EXPECT_EQ(PixelAt(*pair_.measureMap, 8, 9), 0.0);
    EXPECT_EQ(PixelAt(*pair_.disparityMap, 8, 8), threshold == 1.0 ? 1.0 : kNone);
    EXPECT_EQ(PixelAt(*pair_.measureMap, 8, 8), 1.0);
    EXPECT_THAT(frontEnd_.events.back(), HasSubstr("Passes of smoothing: 1, updates: 0."));
  }
}

TEST_F(ExamTruth, PublishedTruthOfARectifiedPair) {
  const std::string truthPath = SharedData("stereo/teddy_disp_left.lan");
  if (truthPath.empty()) GTEST_SKIP();
  AerialPhoto photo;
  ASSERT_EQ(photo.image.Read(SharedData("stereo/teddy_left.lan")), 1);
  VerticalPair made(1, 1);
  photo.image.CopyTo(made.left.image);
  ASSERT_EQ(photo.image.Read(SharedData("stereo/teddy_right.lan")), 1);
  photo.image.CopyTo(made.right.image);
  Store(made);
  frontEnd_.forms = {FilledForm([&](Form& form) {
    form.Find("demFile")->value = truthPath;
    form.Find("windowWidth")->value = std::int64_t{19};
    form.Find("windowHeight")->value = std::int64_t{19};
  })};
  ASSERT_EQ(pair_.ExamTruth(), StereoPair::kDone);
  // Around the truth most of what both images show is found, but hidden places and flat ones.
  int nPlaces = 0;
  int nFound = 0;
  ErdasImg disparities;
  ErdasImg truth;
  ASSERT_EQ(disparities.Read("DispTrueNew.lan"), 1);
  ASSERT_EQ(truth.Read(truthPath), 1);
  for (int row = 10; row < truth.GetSize().cy - 10; ++row) {
    for (int col = 10; col < truth.GetSize().cx - 10; ++col) {
      if (PixelAt(truth, row, col) == 0.0) continue;  // unknown
      ++nPlaces;
      nFound += PixelAt(disparities, row, col) != kNone;
    }
  }
  EXPECT_GT(nFound, nPlaces * 3 / 4) << nFound << " of " << nPlaces;
}

}  // namespace
}  // namespace corvane
