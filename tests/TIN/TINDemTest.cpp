// DEMs of TINs. How nodes get their heights is tested with TinRaster.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "TINSample.h"
#include "erdasimg/ErdasImg.h"
#include "forms/ExtentInput.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kTotal = "message message: Total hrs: 00 mins: 00, secs: 00";

class TINDem : public testing::Test {
 protected:
  void SetUp() override {
    WriteFileBytes("a.tin", TinBytes(TwoTriangles()));
    ASSERT_TRUE(Load(tin, "a.tin"));
    ui.events.clear();
  }

  static std::vector<double> Heights(const ErdasImg& dem) {
    std::vector<double> heights;
    for (std::int32_t row = 0; row < dem.GetSize().cy; ++row) {
      for (std::int32_t col = 0; col < dem.GetSize().cx; ++col) {
        double z = -1.0;
        EXPECT_TRUE(dem.GetPixel(0, row, col, z));
        heights.push_back(z);
      }
    }
    return heights;
  }

  TempFolder folder;
  TestFrontEnd ui;
  TIN tin;
};

TEST_F(TINDem, CellCentresBeginHalfACellInFromTheUpperLeftCorner) {
  // The square's heights: 1 at (0, 0), 2 at (10, 0), 3 at (10, 10), 4 at (0, 10), split by the diagonal from
  // (0, 0). Below it z = 1 + x / 10 + y / 10, above it z = 1 + 3 y / 10 - x / 10.
  ASSERT_EQ(tin.CreateDem("a.lan", {0, 0, 10, 10}, 5.0f, 230.0), 0);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre(kTotal));
  ErdasImg dem;
  ASSERT_EQ(dem.Read("a.lan"), 1);
  EXPECT_EQ(dem.GetSize(), (ImageSize{2, 2}));
  const auto heights = Heights(dem);
  EXPECT_FLOAT_EQ(static_cast<float>(heights[0]), 3.0f);  // (2.5, 7.5)
  EXPECT_FLOAT_EQ(static_cast<float>(heights[1]), 2.5f);  // (7.5, 7.5)
  EXPECT_FLOAT_EQ(static_cast<float>(heights[2]), 1.5f);  // (2.5, 2.5)
  EXPECT_FLOAT_EQ(static_cast<float>(heights[3]), 2.0f);  // (7.5, 2.5)
}

TEST_F(TINDem, HeaderHoldsTheWindowsCornerAndTheCell) {
  ASSERT_EQ(tin.CreateDem("a.lan", {1, 2, 10, 11}, 0.5f, 230.0), 0);
  ErdasImg dem;
  ASSERT_EQ(dem.Read("a.lan"), 1);
  const ErdasHeader& header = *dem.GetHeader();
  EXPECT_EQ(header.bandCount, 1);
  EXPECT_EQ(header.packType, 6);
  EXPECT_EQ(header.xStart, 0);
  EXPECT_EQ(header.yStart, 0);
  EXPECT_EQ(header.xMap, 1.0f);
  EXPECT_EQ(header.yMap, 11.0f);
  EXPECT_EQ(header.xCell, 0.5f);
  EXPECT_EQ(header.yCell, -0.5f);
  EXPECT_EQ(dem.GetSize(), (ImageSize{18, 18}));
}

TEST_F(TINDem, WindowWiderThanTheTinHasTheDefaultInItsOuterCells) {
  ASSERT_EQ(tin.CreateDem("a.lan", {-10, -10, 20, 20}, 10.0f, 230.0), 0);
  ErdasImg dem;
  ASSERT_EQ(dem.Read("a.lan"), 1);
  const auto heights = Heights(dem);
  ASSERT_EQ(heights.size(), 9u);
  for (std::size_t i = 0; i < 9; ++i) {
    if (i == 4) {
      EXPECT_FLOAT_EQ(static_cast<float>(heights[i]), 2.0f);
    } else {
      EXPECT_EQ(heights[i], 230.0) << i;
    }
  }
}

TEST_F(TINDem, LastColumnReachesPastTheWindowsEnd) {
  ASSERT_EQ(tin.CreateDem("a.lan", {0, 0, 10.2, 10}, 1.0f, 230.0), 0);
  ErdasImg dem;
  ASSERT_EQ(dem.Read("a.lan"), 1);
  EXPECT_EQ(dem.GetSize(), (ImageSize{11, 10}));
}

TEST_F(TINDem, CellsThatMakeNoRasterFailAndNothingIsWritten) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const float cellSize : {0.0f, -1.0f, nan, 1e-5f}) {
    EXPECT_EQ(tin.CreateDem("a.lan", {0, 0, 10, 10}, cellSize, 230.0), -1) << cellSize;
  }
  EXPECT_EQ(tin.CreateDem("a.lan", {10, 10, 0, 0}, -1.0f, 230.0), -1);
  EXPECT_EQ(tin.CreateDem("a.lan", {0, 0, 0, 10}, 1.0f, 230.0), -1);
  EXPECT_EQ(ReadFileBytes("a.lan"), "");
  EXPECT_THAT(ui.EventsWith("message"), IsEmpty());
}

TEST_F(TINDem, FailedWriteIsNotItsOwnFailure) {
  StoredDem stored;
  EXPECT_EQ(tin.CreateDem("missing/a.lan", {0, 0, 10, 10}, 1.0f, 230.0, &stored), 0);
  EXPECT_LT(stored.status, 0);
  EXPECT_EQ(stored.nRows, 10);
  EXPECT_EQ(stored.nCols, 10);
  EXPECT_THAT(ui.EventsWith("message"),
              ElementsAre("message warning: Write file missing/a.lan error!", kTotal));
}

}  // namespace
}  // namespace corvane
