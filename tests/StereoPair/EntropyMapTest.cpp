// "Entropy Map".

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "StereoPair/PlainDense.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kPrompt = "value: Please input the window size 19";

class EntropyMap : public testing::Test {
 protected:
  // An image of random pixels of this type.
  static ErdasImg MakeImage(std::int32_t cols, std::int32_t rows, std::uint16_t packType = kPackByte,
                            double factor = 1.0) {
    ErdasHeader header;
    header.packType = packType;
    header.cols = cols;
    header.rows = rows;
    header.xStart = 12;
    ErdasImg image;
    image.Create(header, false);
    const auto noise = Noise(static_cast<std::size_t>(cols * rows), 9);
    for (int i = 0; i < cols * rows; ++i) {
      image.SetPixel(0, i / cols, i % cols, noise[static_cast<std::size_t>(i)] / 8 * factor);
    }
    return image;
  }

  int Run(ErdasImg image, double size) {
    EXPECT_EQ(image.Write("photo.lan"), 1);
    frontEnd_.files = {{"photo.lan"}};
    frontEnd_.values = {size};
    return StereoPair::MakeEntropyMap();
  }

  // Compares with the image's own operation, place by place.
  static void ExpectMapOf(const std::string& path, ErdasImg& image, int size) {
    ErdasImg map;
    ASSERT_EQ(map.Read(path), 1);
    EXPECT_EQ(map.GetPackType(), kPackFloat);
    EXPECT_EQ(map.GetBandCount(), 1);
    EXPECT_EQ(map.GetHeader()->xStart, 12);
    const auto [cols, rows] = image.GetSize();
    ASSERT_EQ(map.GetSize(), image.GetSize());
    for (int row = 0; row < rows; ++row) {
      for (int col = 0; col < cols; ++col) {
        const int half = size / 2;
        std::vector<double> values = {0.0};
        if (row >= half && row < rows - half && col >= half && col < cols - half) {
          values.clear();
          image.GetWindowEntropy(col, row, size, size, values);
        }
        ASSERT_EQ(PixelAt(map, row, col), static_cast<float>(values.at(0))) << row << ' ' << col;
      }
    }
  }

  TempFolder folder_;
  TestFrontEnd frontEnd_;
};

TEST_F(EntropyMap, HoldsTheEntropyOfEachWindow) {
  for (const int size : {1, 2, 3, 8, 19}) {
    ErdasImg image = MakeImage(37, 26);
    ASSERT_EQ(Run(MakeImage(37, 26), size), StereoPair::kDone);
    ExpectMapOf("photo_EntropyMap.lan", image, size);
  }
  EXPECT_EQ(frontEnd_.events.back(), "status 0: Entropies of 19 x 19 pixels. Written: photo_EntropyMap.lan.");
  EXPECT_EQ(frontEnd_.waitDepth, 0);
}

TEST_F(EntropyMap, OfTwoKindsOfPixelsByHand) {
  ErdasImg image;
  SetBytes(image, 3, 3, {5, 5, 5, 200, 5, 5, 200, 200, 5});
  ASSERT_EQ(Run(std::move(image), 3.0), StereoPair::kDone);
  ErdasImg map;
  ASSERT_EQ(map.Read("photo_EntropyMap.lan"), 1);
  // ln 9 - (6 ln 6 + 3 ln 3) / 9
  EXPECT_NEAR(PixelAt(map, 1, 1), 0.6365141682948128, 1e-7);
}

TEST_F(EntropyMap, CountsValuesNotBytes) {
  struct Case {
    std::uint16_t packType;
    double factor;
  };
  // Values from 256 on, and below 0, fall into no bin.
  for (const Case& c : {Case{kPackUInt16, 20.0}, Case{kPackInt16, -3.0}, Case{kPackFloat, 0.37},
                        Case{kPackDouble, 11.1}, Case{kPackInt32, 9.0}, Case{kPackUInt32, 30.0}}) {
    ErdasImg image = MakeImage(20, 15, c.packType, c.factor);
    ASSERT_EQ(Run(MakeImage(20, 15, c.packType, c.factor), 5.0), StereoPair::kDone);
    ExpectMapOf("photo_EntropyMap.lan", image, 5);
    EXPECT_EQ(
        frontEnd_.events.back(),
        "status 0: Entropies of 5 x 5 pixels. Written: photo_EntropyMap.lan. Values outside of 0 to 255 "
        "count in no bin.");
  }
}

TEST_F(EntropyMap, PixelsThatAreNoNumbersFallIntoNoBin) {
  ErdasImg image = MakeImage(12, 12, kPackFloat);
  image.SetPixel(0, 5, 5, std::numeric_limits<double>::quiet_NaN());
  image.SetPixel(0, 6, 6, std::numeric_limits<double>::infinity());
  ErdasImg copy;
  image.CopyTo(copy);
  ASSERT_EQ(Run(std::move(copy), 4.0), StereoPair::kDone);
  ExpectMapOf("photo_EntropyMap.lan", image, 4);
}

TEST_F(EntropyMap, SizeIsCutToAWholeNumber) {
  ErdasImg image = MakeImage(12, 12);
  ASSERT_EQ(Run(MakeImage(12, 12), 5.99), StereoPair::kDone);
  ExpectMapOf("photo_EntropyMap.lan", image, 5);
}

TEST_F(EntropyMap, OneWindowMayBeAllOfTheImage) {
  ErdasImg image = MakeImage(7, 7);
  ASSERT_EQ(Run(MakeImage(7, 7), 7.0), StereoPair::kDone);
  ExpectMapOf("photo_EntropyMap.lan", image, 7);
}

TEST_F(EntropyMap, LargeWindowsOfOneValue) {
  ErdasImg image;
  SetBytes(image, 301, 300, {});
  image.GetHeader()->xStart = 12;
  ErdasImg copy;
  image.CopyTo(copy);
  ASSERT_EQ(Run(std::move(copy), 300.0), StereoPair::kDone);
  ExpectMapOf("photo_EntropyMap.lan", image, 300);
}

TEST_F(EntropyMap, TakesBandZero) {
  ErdasHeader header;
  header.cols = 10;
  header.rows = 10;
  header.bandCount = 3;
  header.xStart = 12;
  ErdasImg image;
  image.Create(header, false);
  const auto noise = Noise(100, 3);
  std::copy(noise.begin(), noise.end(), image.GetBands().GetBand(0).begin());
  ErdasImg copy;
  image.CopyTo(copy);
  ASSERT_EQ(Run(std::move(copy), 3.0), StereoPair::kDone);
  ExpectMapOf("photo_EntropyMap.lan", image, 3);
}

TEST_F(EntropyMap, AsksForImageAndSize) {
  ASSERT_EQ(Run(MakeImage(30, 30), 5.0), StereoPair::kDone);
  ASSERT_EQ(frontEnd_.choosers.size(), 1u);
  EXPECT_EQ(frontEnd_.choosers[0].filter, "Image Files (*.lan)|*.lan|All Files (*.*)|*.*|");
  EXPECT_EQ(frontEnd_.choosers[0].title, "Choose a Image.");
  EXPECT_THAT(frontEnd_.EventsWith("value"), ElementsAre(kPrompt));
}

TEST_F(EntropyMap, TellsProgressOnceARow) {
  ASSERT_EQ(Run(MakeImage(12, 6), 3.0), StereoPair::kDone);
  EXPECT_THAT(frontEnd_.EventsWith("status 0: Done"),
              ElementsAre("status 0: Done 0% ...", "status 0: Done 25% ...", "status 0: Done 50% ...",
                          "status 0: Done 75% ..."));
}

TEST_F(EntropyMap, TellsNoPercentTwice) {
  ASSERT_EQ(Run(MakeImage(5, 303), 3.0), StereoPair::kDone);
  const auto told = frontEnd_.EventsWith("status 0: Done");
  ASSERT_EQ(told.size(), 100u);
  for (std::size_t i = 0; i < told.size(); ++i) {
    EXPECT_EQ(told[i], "status 0: Done " + std::to_string(i) + "% ...");
  }
}

TEST_F(EntropyMap, CancelledChooserEndsIt) {
  EXPECT_EQ(StereoPair::MakeEntropyMap(), StereoPair::kCancelled);
  EXPECT_EQ(frontEnd_.events.size(), 1u);
}

TEST_F(EntropyMap, CancelledSizeEndsIt) {
  MakeImage(30, 30).Write("photo.lan");
  frontEnd_.files = {{"photo.lan"}};
  EXPECT_EQ(StereoPair::MakeEntropyMap(), StereoPair::kCancelled);
  EXPECT_THAT(frontEnd_.EventsWith("message"), IsEmpty());
  EXPECT_FALSE(std::filesystem::exists("photo_EntropyMap.lan"));
}

TEST_F(EntropyMap, ImageThatDoesNotOpenEndsIt) {
  frontEnd_.files = {{"none.lan"}};
  EXPECT_EQ(StereoPair::MakeEntropyMap(), StereoPair::kNoInput);
  EXPECT_THAT(frontEnd_.EventsWith("message"), ElementsAre("message warning: Open file none.lan error!"));
  EXPECT_THAT(frontEnd_.EventsWith("value"), IsEmpty());
}

TEST_F(EntropyMap, WindowThatDoesNotFitIsTold) {
  for (const double size : {0.9, 0.0, -3.0, 31.0, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
    frontEnd_.events.clear();
    EXPECT_EQ(Run(MakeImage(40, 30), size), StereoPair::kNoInput);
    EXPECT_THAT(frontEnd_.EventsWith("message"), ElementsAre(HasSubstr("does not fit the image")));
  }
  EXPECT_FALSE(std::filesystem::exists("photo_EntropyMap.lan"));
}

TEST_F(EntropyMap, ResultThatReplacesTheImageIsRefused) {
  MakeImage(30, 30).Write("photo.lan");
  std::filesystem::create_symlink("photo.lan", "photo_EntropyMap.lan");
  const std::string before = ReadFileBytes("photo.lan");
  frontEnd_.files = {{"photo.lan"}};
  frontEnd_.values = {5.0};
  EXPECT_EQ(StereoPair::MakeEntropyMap(), StereoPair::kNotWritten);
  EXPECT_THAT(frontEnd_.EventsWith("message"), ElementsAre(HasSubstr("files that the command reads")));
  EXPECT_EQ(ReadFileBytes("photo.lan"), before);
}

TEST_F(EntropyMap, ResultThatCannotBeWrittenIsTold) {
  std::filesystem::create_directory("photo_EntropyMap.lan");
  EXPECT_EQ(Run(MakeImage(30, 30), 5.0), StereoPair::kNotWritten);
  EXPECT_THAT(frontEnd_.EventsWith("message"),
              ElementsAre(HasSubstr("Write file photo_EntropyMap.lan error!")));
}

}  // namespace
}  // namespace corvane
