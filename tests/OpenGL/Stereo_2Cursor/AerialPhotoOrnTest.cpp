// Orientation files, and the image of a photo.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "OpenGL/Stereo_2Cursor/PhotoFixture.h"
#include "erdasimg/ErdasHeader.h"
#include "io/TextScanner.h"
#include "numerics/Angles.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kRecord =
    "ORIENTATION photos/a.lan RightPhoto\n"
    "\t152.844\n"
    "\t1000.5\t2000.25\t1500.125\n"
    "\t1.5\t-2.5\t90\n"
    "\t230.0\t0.0\t0.0\n"
    "\t0.025\t0.001\t-100.5\n"
    "\t-0.002\t-0.025\t101.5\n"
    "0.5 -0.25\n"
    "0.025 0.026\n";

class AerialPhotoOrnTest : public testing::Test {
 protected:
  // Loads a file of this text.
  int Load(AerialPhoto& photo, const std::string& text) {
    WriteFileBytes("a.orn", text);
    return photo.LoadOrientation("a.orn");
  }

  TempFolder folder;
  TestFrontEnd ui;
};

TEST_F(AerialPhotoOrnTest, ARecordIsRead) {
  AerialPhoto photo;
  EXPECT_EQ(Load(photo, kRecord), 1);
  EXPECT_EQ(photo.focalLength, 152.844);
  EXPECT_EQ(photo.perspectiveX, 1000.5);
  EXPECT_EQ(photo.perspectiveY, 2000.25);
  EXPECT_EQ(photo.perspectiveZ, 1500.125);
  EXPECT_EQ(photo.omega, 1.5 / 180.0 * 3.141592653589793);
  EXPECT_EQ(photo.phi, -2.5 / 180.0 * 3.141592653589793);
  EXPECT_EQ(photo.kappa, 90.0 / 180.0 * 3.141592653589793);
  EXPECT_EQ(photo.imageToPhoto[0][0], 0.025);
  EXPECT_EQ(photo.imageToPhoto[0][1], 0.001);
  EXPECT_EQ(photo.imageToPhoto[0][2], -101.0) << "-100.5 less the principal point";
  EXPECT_EQ(photo.imageToPhoto[1][0], -0.002);
  EXPECT_EQ(photo.imageToPhoto[1][1], -0.025);
  EXPECT_EQ(photo.imageToPhoto[1][2], 101.75);
  EXPECT_EQ(photo.imageToPhoto[2][0], 0.0);
  EXPECT_EQ(photo.imageToPhoto[2][1], 0.0);
  EXPECT_EQ(photo.imageToPhoto[2][2], -152.844);
  EXPECT_EQ(photo.principalX, 0.5);
  EXPECT_EQ(photo.principalY, -0.25);
  EXPECT_EQ(photo.pixelSizeX, 0.025);
  EXPECT_EQ(photo.pixelSizeY, 0.026);
  EXPECT_EQ(photo.name, "") << "words are skipped";
  EXPECT_EQ(photo.frameWidth, 220.0) << "and so is line 5";
  EXPECT_THAT(ui.events, IsEmpty());
}

TEST_F(AerialPhotoOrnTest, LoadingMakesTheMatrices) {
  AerialPhoto photo;
  ASSERT_EQ(Load(photo, kRecord), 1);
  const PlainPhoto plain({.f = 152.844,
                          .principalX = 0.5,
                          .principalY = -0.25,
                          .x = 1000.5,
                          .y = 2000.25,
                          .z = 1500.125,
                          .omega = 1.5,
                          .phi = -2.5,
                          .kappa = 90.0,
                          .a = 0.025,
                          .b = 0.001,
                          .c = -100.5,
                          .d = -0.002,
                          .e = -0.025,
                          .g = 101.5});
  double col = 0.0;
  double row = 0.0;
  photo.GroundToImage(1200.0, 1900.0, 100.0, col, row);
  EXPECT_NEAR(col, static_cast<double>(plain.Project(1200.0, 1900.0, 100.0)[0]), 1e-9);
  EXPECT_NEAR(row, static_cast<double>(plain.Project(1200.0, 1900.0, 100.0)[1]), 1e-9);
}

TEST_F(AerialPhotoOrnTest, WithoutLine9ThePixelSizeStays) {
  const std::string text = kRecord;
  for (const char* end : {"\n", "", "\n\n  \t"}) {
    AerialPhoto photo;
    ASSERT_EQ(Load(photo, text.substr(0, text.find("\n0.025 0.026")) + end), 1);
    EXPECT_EQ(photo.principalY, -0.25);
    EXPECT_EQ(photo.imageToPhoto[1][2], 101.75);
    EXPECT_EQ(photo.pixelSizeX, 0.07);
    EXPECT_EQ(photo.pixelSizeY, 0.07);
  }
}

TEST_F(AerialPhotoOrnTest, AnyWhiteSpaceSeparates) {
  std::string text = kRecord;
  for (char& c : text) c = c == '\t' ? ' ' : c;
  std::string crlf;
  for (const char c : text) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
  std::string line = text;
  for (char& c : line) c = c == '\n' ? ' ' : c;
  for (const std::string& form : {text, crlf, line, "\n\n\t" + text}) {
    AerialPhoto photo;
    ASSERT_EQ(Load(photo, form), 1);
    EXPECT_EQ(photo.focalLength, 152.844);
    EXPECT_EQ(photo.imageToPhoto[1][2], 101.75);
    EXPECT_EQ(photo.pixelSizeY, 0.026);
  }
}

TEST_F(AerialPhotoOrnTest, ThreeWordsAreTakenWhereverTheyStand) {
  // A name with a blank makes four words: the fourth is where f is looked for, and nothing is read after it.
  const std::string text = kRecord;
  AerialPhoto photo;
  ASSERT_EQ(Load(photo, "ORIENTATION my photo.lan RightPhoto" + text.substr(text.find('\n'))), 1);
  EXPECT_EQ(photo.focalLength, 0.0);
  EXPECT_EQ(photo.perspectiveX, 0.0);
  // With a word too few f is taken for one, and each number for the one before it.
  AerialPhoto shifted;
  ASSERT_EQ(Load(shifted, "ORIENTATION a.lan" + text.substr(text.find('\n'))), 1);
  EXPECT_EQ(shifted.focalLength, 1000.5);
  EXPECT_EQ(shifted.perspectiveX, 2000.25);
}

TEST_F(AerialPhotoOrnTest, AShortFileLeavesTheRest) {
  const std::string text = kRecord;
  for (std::size_t size = 0; size < text.size(); ++size) {
    AerialPhoto photo;
    ASSERT_EQ(Load(photo, text.substr(0, size)), 1) << size;
    EXPECT_TRUE(size > text.find("\t1.5") || photo.omega == 0.0) << size;
    EXPECT_EQ(photo.frameWidth, 220.0);
  }
  AerialPhoto photo;
  photo.focalLength = 88.0;
  photo.perspectiveY = 7.0;
  ASSERT_EQ(Load(photo, "ORIENTATION a b\n\t100\n\t5\n"), 1);
  EXPECT_EQ(photo.focalLength, 100.0);
  EXPECT_EQ(photo.perspectiveX, 5.0);
  EXPECT_EQ(photo.perspectiveY, 7.0);
  EXPECT_EQ(photo.imageToPhoto[2][2], -100.0);
}

TEST_F(AerialPhotoOrnTest, WordsForNumbersEndTheReading) {
  AerialPhoto photo;
  ASSERT_EQ(Load(photo, "ORIENTATION a b\n100\n1 2 x\n4 5 6\n"), 1);
  EXPECT_EQ(photo.focalLength, 100.0);
  EXPECT_EQ(photo.perspectiveX, 1.0);
  EXPECT_EQ(photo.perspectiveY, 2.0);
  EXPECT_EQ(photo.perspectiveZ, 0.0);
}

TEST_F(AerialPhotoOrnTest, NumbersOfAnySizeAreTaken) {
  AerialPhoto photo;
  ASSERT_EQ(Load(photo,
                 "O N W\n1e308\n-1e308 inf nan\n1e300 1e300 1e300\n0 0 0\n1e308 1e308 1e308\n"
                 "1e308 1e308 1e308\n-1e308 0\n1e999 -1e999\n"),
            1);
  EXPECT_EQ(photo.focalLength, 1e308);
  EXPECT_TRUE(std::isinf(photo.imageToPhoto[0][2]));
  EXPECT_TRUE(std::isinf(photo.pixelSizeX));
  double col = 0.0;
  double row = 0.0;
  EXPECT_EQ(photo.GroundToImage(0.0, 0.0, 0.0, col, row), 1);
}

TEST_F(AerialPhotoOrnTest, AnyBytesAreTaken) {
  std::string bytes;
  for (int i = 0; i < 5000; ++i) bytes += static_cast<char>(i * 37 % 256);
  AerialPhoto photo;
  EXPECT_EQ(Load(photo, bytes), 1);
  EXPECT_EQ(photo.focalLength, 0.0);
  EXPECT_EQ(Load(photo, std::string(1 << 20, 'x')), 1) << "a word without an end";
}

TEST_F(AerialPhotoOrnTest, LoadingFailsSilently) {
  AerialPhoto photo;
  EXPECT_EQ(photo.LoadOrientation(""), -1);
  EXPECT_EQ(photo.LoadOrientation("none.orn"), -1);
  EXPECT_EQ(photo.LoadOrientation("."), -1);
  EXPECT_EQ(photo.ReadOrientation(nullptr), -1);
  EXPECT_THAT(ui.events, IsEmpty());
}

TEST_F(AerialPhotoOrnTest, CheckedLoadingTellsAndMakesNoMatrices) {
  AerialPhoto photo;
  EXPECT_EQ(photo.LoadOrientationChecked("none.orn"), -1);
  EXPECT_THAT(ui.events, ElementsAre("message warning: Orientation Parameters File Cannot be opened!"));
  WriteFileBytes("a.orn", kRecord);
  EXPECT_EQ(photo.LoadOrientationChecked("a.orn"), 1);
  EXPECT_EQ(photo.focalLength, 152.844);
  EXPECT_EQ(photo.rotation[2][2], 0.0);
  photo.Recompute();
  EXPECT_NE(photo.rotation[2][2], 0.0);
}

TEST_F(AerialPhotoOrnTest, TheRecordIsWrittenLineByLine) {
  AerialPhoto photo;
  SetPhoto(photo, {.f = 152.844,
                   .principalX = 0.5,
                   .principalY = -0.25,
                   .x = 1000.5,
                   .y = -2000.25,
                   .z = 1500.1234567,
                   .omega = 1.5,
                   .phi = -2.5,
                   .kappa = 90.0,
                   .a = 0.025,
                   .b = 0.001,
                   .c = -100.5,
                   .d = -0.002,
                   .e = -0.025,
                   .g = 101.5});
  photo.name = "photos/a.lan";
  photo.frameWidth = 230.0;
  photo.pixelSizeX = 0.025;
  EXPECT_EQ(photo.WriteOrientation("w.orn", "LeftPhoto"), 1);
  EXPECT_EQ(ReadFileBytes("w.orn"),
            "ORIENTATION photos/a.lan LeftPhoto\n"
            "\t152.844000\n"
            "\t1000.500000\t-2000.250000\t1500.123457\n"
            "\t1.500000\t-2.500000\t90.000000\n"
            "\t230.000000\t0.000000\t0.000000\n"
            "\t0.025000\t0.001000\t-100.500000\n"
            "\t-0.002000\t-0.025000\t101.500000\n"
            "0.500000 -0.250000\n"
            "0.025000 0.070000\n");
  EXPECT_THAT(ui.events, IsEmpty());
}

TEST_F(AerialPhotoOrnTest, WritingAndReadingBackGivesTheSameToSixDecimals) {
  RandomPhotos photos;
  for (int n = 0; n < 50; ++n) {
    AerialPhoto photo;
    SetPhoto(photo, photos.Next());
    photo.name = "a.lan";
    ASSERT_EQ(photo.WriteOrientation("w.orn", "photo"), 1);
    AerialPhoto back;
    ASSERT_EQ(back.LoadOrientation("w.orn"), 1);
    constexpr double kPrinted = 0.5000001e-6;
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        // The principal point is rounded, too.
        const double tolerance = j == 2 ? 2 * kPrinted : kPrinted;
        EXPECT_NEAR(back.imageToPhoto[i][j], photo.imageToPhoto[i][j], tolerance);
      }
    }
    EXPECT_NEAR(back.focalLength, photo.focalLength, kPrinted);
    EXPECT_NEAR(back.perspectiveX, photo.perspectiveX, kPrinted);
    EXPECT_NEAR(back.perspectiveY, photo.perspectiveY, kPrinted);
    EXPECT_NEAR(back.perspectiveZ, photo.perspectiveZ, kPrinted);
    EXPECT_NEAR(ToDegrees(back.omega), ToDegrees(photo.omega), kPrinted);
    EXPECT_NEAR(ToDegrees(back.phi), ToDegrees(photo.phi), kPrinted);
    EXPECT_NEAR(ToDegrees(back.kappa), ToDegrees(photo.kappa), kPrinted);
  }
}

TEST_F(AerialPhotoOrnTest, BlanksInTheNameKeepThreeWords) {
  for (const char* name : {"", " ", "my photo.lan", "a\tb\nc", "photos/a.lan"}) {
    for (const char* word : {"", "Right Photo", "RightPhoto"}) {
      AerialPhoto photo;
      SetPhoto(photo, {});
      photo.name = name;
      ASSERT_EQ(photo.WriteOrientation("w.orn", word), 1);
      AerialPhoto back;
      ASSERT_EQ(back.LoadOrientation("w.orn"), 1);
      EXPECT_EQ(back.focalLength, 150.0);
      EXPECT_EQ(back.pixelSizeY, 0.07);
    }
  }
  AerialPhoto photo;
  photo.name = "my photo.lan";
  ASSERT_EQ(photo.WriteOrientation("w.orn", ""), 1);
  EXPECT_THAT(ReadFileBytes("w.orn"), testing::StartsWith("ORIENTATION my_photo.lan _\n"));
}

TEST_F(AerialPhotoOrnTest, AFileThatCanNotBeWrittenIsTold) {
  const AerialPhoto photo;
  EXPECT_EQ(photo.WriteOrientation("none/w.orn", "photo"), -1);
  EXPECT_THAT(ui.events,
              ElementsAre("message warning: Orientation Parameters File Cannot be opened for writing!"));
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST_F(AerialPhotoOrnTest, StoringIsWritingWithoutAWarning) {
  AerialPhoto photo;
  photo.name = "a.lan";
  EXPECT_EQ(photo.StoreOrientation("none/w.orn", "photo"), -1);
  EXPECT_EQ(photo.StoreOrientation("s.orn", "photo"), 1);
  EXPECT_EQ(photo.WriteOrientation("w.orn", "photo"), 1);
  EXPECT_EQ(ReadFileBytes("s.orn"), ReadFileBytes("w.orn"));
  EXPECT_THAT(ui.events, IsEmpty());
}

TEST_F(AerialPhotoOrnTest, WhatIsNotFiniteIsSpelledAsInMatrices) {
  AerialPhoto photo;
  photo.name = "a.lan";
  photo.focalLength = -std::numeric_limits<double>::quiet_NaN();
  photo.perspectiveX = -std::numeric_limits<double>::infinity();
  photo.principalX = std::numeric_limits<double>::quiet_NaN();
  photo.pixelSizeY = std::numeric_limits<double>::infinity();
  EXPECT_EQ(photo.StoreOrientation("w.orn", "photo"), 1);
  EXPECT_EQ(ReadFileBytes("w.orn"),
            "ORIENTATION a.lan photo\n"
            "\tnan\n"
            "\t-inf\t0.000000\t0.000000\n"
            "\t0.000000\t0.000000\t0.000000\n"
            "\t220.000000\t0.000000\t0.000000\n"
            "\t0.000000\t0.000000\tnan\n"
            "\t0.000000\t0.000000\t0.000000\n"
            "nan 0.000000\n"
            "0.070000 inf\n");
}

TEST_F(AerialPhotoOrnTest, TheOtherCaseOfTheExtensionIsTaken) {
  EXPECT_EQ(ExistingOrientation("a.ORN"), "a.ORN") << "there is neither";
  WriteFileBytes("a.orn", kRecord);
  EXPECT_EQ(ExistingOrientation("a.ORN"), "a.orn");
  EXPECT_EQ(ExistingOrientation("a.orn"), "a.orn");
  WriteFileBytes("b.ORN", kRecord);
  EXPECT_EQ(ExistingOrientation("b.orn"), "b.ORN");
  WriteFileBytes("a.ORN", kRecord);
  EXPECT_EQ(ExistingOrientation("a.ORN"), "a.ORN") << "the path as it is comes first";
  WriteFileBytes("corn", kRecord);
  EXPECT_EQ(ExistingOrientation("cORN"), "cORN") << "no extension";
  for (const char* odd : {"", "a", "rn", ".orn"}) EXPECT_EQ(ExistingOrientation(odd), odd);
}

TEST_F(AerialPhotoOrnTest, OpenImageTakesTheStart) {
  ErdasHeader header;
  header.cols = 2;
  header.rows = 1;
  header.xStart = -70000;
  header.yStart = 123456;
  WriteFileBytes("a.lan", std::string(reinterpret_cast<const char*>(&header), sizeof header) + "ab");
  AerialPhoto photo;
  EXPECT_EQ(photo.OpenImage("a.lan"), 1);
  EXPECT_EQ(photo.startX, -70000);
  EXPECT_EQ(photo.startY, 123456);
  EXPECT_TRUE(photo.image.HasPixels());
  photo.CloseImage();
  EXPECT_FALSE(photo.image.HasPixels());
}

TEST_F(AerialPhotoOrnTest, OpenImageIsOneWhetherOrNotTheReadWorked) {
  AerialPhoto photo;
  EXPECT_EQ(photo.OpenImage("none.lan"), 1);
  EXPECT_THAT(ui.events, ElementsAre("message warning: Open file none.lan error!"));
  EXPECT_EQ(photo.startX, 0);
}

}  // namespace
}  // namespace corvane
