#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "StereoPair/PairMaker.h"
#include "StereoPair/PlainCoefficient.h"
#include "erdasimg/PackType.h"
#include "io/Paths.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {

// An image of bytes that is 0 beyond its edges.
struct PlainImage {
  long cols = 0;
  long rows = 0;
  std::vector<std::uint8_t> bytes = {};

  int At(long row, long col) const {
    if (row < 0 || row >= rows || col < 0 || col >= cols) return 0;
    return bytes[static_cast<std::size_t>(row * cols + col)];
  }
};

inline void SetBytes(ErdasImg& image, const PlainImage& plain) {
  SetBytes(image, static_cast<std::int32_t>(plain.cols), static_cast<std::int32_t>(plain.rows), plain.bytes);
}

inline PlainImage RandomImage(long cols, long rows, unsigned seed, int nGreys = 256) {
  std::mt19937 random(seed);
  PlainImage image{cols, rows};
  for (long i = 0; i < cols * rows; ++i) {
    image.bytes.push_back(static_cast<std::uint8_t>(random() % static_cast<unsigned>(nGreys)));
  }
  return image;
}

class RandomNumbers {
 public:
  explicit RandomNumbers(unsigned seed) : random_(seed) {}

  // From 0 to n - 1.
  std::int32_t UpTo(int n) { return static_cast<std::int32_t>(random_() % static_cast<unsigned>(n)); }

 private:
  std::mt19937 random_;
};

// What another camera sees: pixel (row, col) is that of `image` at (row + down, col + right), where that is
// there, else noise.
inline PlainImage Shifted(const PlainImage& image, long right, long down, unsigned seed) {
  PlainImage shifted = RandomImage(image.cols, image.rows, seed);
  for (long row = 0; row < image.rows; ++row) {
    for (long col = 0; col < image.cols; ++col) {
      const bool isThere =
          row + down >= 0 && row + down < image.rows && col + right >= 0 && col + right < image.cols;
      if (!isThere) continue;
      shifted.bytes[static_cast<std::size_t>(row * image.cols + col)] =
          static_cast<std::uint8_t>(image.At(row + down, col + right));
    }
  }
  return shifted;
}

struct PlainPlace {
  long col = 0;
  long row = 0;
};

inline Point2 PointOf(const PlainPlace& place) {
  return {static_cast<double>(place.col), static_cast<double>(place.row)};
}

struct PlainRect {
  long left;
  long top;
  long right;
  long bottom;
};

// A score of two places, left and right.
using PlainScore = std::function<double(const PlainPlace&, const PlainPlace&)>;

inline std::vector<double> PlainWindow(const PlainImage& image, const PlainPlace& place, long width,
                                       long height) {
  std::vector<double> pixels;
  for (long i = 0; i < height; ++i) {
    for (long j = 0; j < width; ++j) {
      pixels.push_back(image.At(place.row - height / 2 + i, place.col - width / 2 + j));
    }
  }
  return pixels;
}

inline PlainScore PlainCorrelation(const PlainImage& left, const PlainImage& right, long width, long height) {
  return [&left, &right, width, height](const PlainPlace& l, const PlainPlace& r) {
    return PlainCoefficient(PlainWindow(left, l, width, height), PlainWindow(right, r, width, height));
  };
}

inline PlainScore PlainDifference(const PlainImage& left, const PlainImage& right, long width, long height) {
  return [&left, &right, width, height](const PlainPlace& l, const PlainPlace& r) {
    const auto a = PlainWindow(left, l, width, height);
    const auto b = PlainWindow(right, r, width, height);
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += std::fabs(a[i] - b[i]);
    return sum;
  };
}

// The search that starts at `place` and moves it.
inline double PlainBest(const PlainScore& score, const PlainPlace& left, PlainPlace& place,
                        const PlainRect& rect) {
  const PlainPlace start = place;
  double best = 0.0;
  if (start.col >= rect.left && start.col < rect.right && start.row >= rect.top && start.row < rect.bottom) {
    best = score(left, start);
  }
  for (long row = rect.top; row <= rect.bottom; ++row) {
    for (long col = rect.left; col <= rect.right; ++col) {
      if (col == start.col && row == start.row) continue;
      const double value = score(left, {col, row});
      if (!(value > best)) continue;
      best = value;
      place = {col, row};
    }
  }
  return best;
}

inline double PlainLeast(const PlainScore& score, const PlainPlace& left, PlainPlace& place,
                         const PlainRect& rect) {
  const PlainPlace start = place;
  double best = score(left, start);
  for (long row = rect.top; row <= rect.bottom; ++row) {
    for (long col = rect.left; col <= rect.right; ++col) {
      const double value = score(left, {col, row});
      if (!(value < best)) continue;
      best = value;
      place = {col, row};
    }
  }
  return best;
}

struct PlainPair {
  PlainPlace left;
  PlainPlace right;
  double score;
};

// What the form and the prompt set.
struct PlainSettings {
  long width = 7;
  long height = 7;
  double step = 10.0;  // pixels
  double threshold = 0.75;
  long range = 55;
  long offset = -10;
  long margin = 1;  // rows to either side
};

// Offsets and ranges that lead far beyond all images, in either direction.
inline std::vector<PlainSettings> HugeSettings(double threshold) {
  std::vector<PlainSettings> settings;
  for (const long range : {-2000000000L, 2000000000L}) {
    for (const long offset : {-2000000000L, 0L, 2000000000L}) {
      settings.push_back({.threshold = threshold, .range = range, .offset = offset});
    }
  }
  return settings;
}

// Finds the partner of a left place, from the right place given on; returns its score.
using PlainSearch = std::function<double(const PlainPlace&, PlainPlace&, const PlainRect&)>;

// The grid as it is told: columns halfW + j step of the left image, rows halfH + margin + i step, so many
// rows up and down.
inline std::vector<PlainPair> PlainGrid(const PlainImage& left, const PlainImage& right,
                                        const PlainSettings& settings, const PlainSearch& search) {
  std::vector<PlainPair> pairs;
  const long halfW = settings.width / 2;
  const long halfH = settings.height / 2;
  const long nCols = static_cast<long>((left.cols - settings.width) / settings.step + 1.0);
  const long margin = settings.margin;
  const long nRows = static_cast<long>((left.rows - settings.height - 2 * margin) / settings.step + 1.0);
  for (long i = 0; i < nRows; ++i) {
    for (long j = 0; j < nCols; ++j) {
      const PlainPlace l{static_cast<long>(halfW + j * settings.step),
                         static_cast<long>(i * settings.step + halfH + margin)};
      long s = l.col + settings.offset;
      long lo = s - settings.range;
      long hi = s + settings.range;
      if (lo > right.cols || hi < 0) continue;
      if (lo < halfW) lo = halfW;
      if (hi > right.cols - halfW) hi = right.cols - halfW;
      if (s < halfW) s = halfW;
      if (s > right.cols - halfW) s = right.cols - halfW;
      PlainPlace r{s, l.row};
      const double score = search(l, r, {lo, l.row - margin, hi, l.row + margin});
      if (score > settings.threshold) pairs.push_back({l, r, score});
    }
  }
  return pairs;
}

// The grid whose partners are those of the best score.
inline std::vector<PlainPair> PlainBestGrid(const PlainImage& left, const PlainImage& right,
                                            const PlainSettings& settings, const PlainScore& score) {
  return PlainGrid(left, right, settings, [&](const PlainPlace& l, PlainPlace& r, const PlainRect& rect) {
    return PlainBest(score, l, r, rect);
  });
}

inline std::string PairLine(long id, const PlainPair& pair) {
  char line[256];
  std::snprintf(line, sizeof line, "%ld, %f, %f, %f, %f, %f\n", id, static_cast<double>(pair.left.row),
                static_cast<double>(pair.left.col), static_cast<double>(pair.right.row),
                static_cast<double>(pair.right.col), pair.score);
  return line;
}

inline std::string PairText(const std::vector<PlainPair>& pairs) {
  std::string text;
  for (std::size_t i = 0; i < pairs.size(); ++i) text += PairLine(static_cast<long>(i), pairs[i]);
  return text;
}

// Runs a method of a pair on files of the current folder: l.lan and r.lan, out.pts.
class GridMethodTest : public ::testing::Test {
 protected:
  // Both images, and orientations of two vertical photos whose base makes the disparity of height 0.
  void Store(const PlainImage& left, const PlainImage& right, double base = 10.0,
             const ImageStart& leftStart = {}, const ImageStart& rightStart = {}) {
    VerticalPair made(1, 1, {}, {}, base);
    StoreSide(made.left, left, leftStart, "l");
    StoreSide(made.right, right, rightStart, "r");
  }

  // Answers the form and the prompt; a step of 10 pixels is a spacing of 1.0 over pixels of 0.1.
  void Answer(const PlainSettings& settings) {
    ui_.forms.push_back([settings](Form& form) {
      form.Find("leftImage")->value = std::string("l.lan");
      form.Find("rightImage")->value = std::string("r.lan");
      form.Find("matchedPoints")->value = std::string("out.pts");
      form.Find("windowWidth")->value = std::int64_t{settings.width};
      form.Find("windowHeight")->value = std::int64_t{settings.height};
      form.Find("groundSpacing")->value = settings.step * 0.1;
      form.Find("matchThreshold")->value = settings.threshold;
      form.Find("maxDisparity")->value = std::int64_t{settings.range};
      return true;
    });
    ui_.values.push_back(static_cast<double>(settings.offset));
  }

  // Lets the next form change more than Answer does.
  void Change(const std::function<void(Form&)>& change) {
    const auto answer = ui_.forms.back();
    ui_.forms.back() = [answer, change](Form& form) {
      const bool isConfirmed = answer(form);
      change(form);
      return isConfirmed;
    };
  }

  using Method = int (StereoPair::*)();

  // The method writes these pairs for the images.
  void ExpectPairs(Method method, const PlainImage& left, const PlainImage& right,
                   const PlainSettings& settings, const std::vector<PlainPair>& expected) {
    Store(left, right);
    Answer(settings);
    EXPECT_EQ((pair_.*method)(), StereoPair::kDone);
    EXPECT_EQ(ReadFileBytes("l_GridMatchPair.txt"), PairText(expected));
  }

  // The form began with this threshold and 55 columns, and the prompt with -10.
  void ExpectAsked(double threshold) const {
    ASSERT_FALSE(ui_.shownForms.empty());
    EXPECT_EQ(ui_.shownForms[0].GetReal("matchThreshold"), threshold);
    EXPECT_EQ(ui_.shownForms[0].GetInteger("maxDisparity"), 55);
    EXPECT_EQ(ui_.EventsWith("value: "), std::vector<std::string>{"value: Please input a value. -10"});
  }

  // A cancelled form is all that the method shows, and it writes nothing.
  void ExpectCancelledForm(Method method) {
    ui_.forms.push_back([](Form&) { return false; });
    EXPECT_EQ((pair_.*method)(), StereoPair::kCancelled);
    EXPECT_EQ(ui_.events, std::vector<std::string>{"form: MatchInput"});
    EXPECT_FALSE(FileExists("GroundPts.log"));
  }

  // A cancelled prompt leaves the offset of -10, with which the method goes on.
  void ExpectCancelledOffset(Method method, const PlainImage& left, const PlainImage& right, long range) {
    Store(left, right);
    Answer({.range = range});
    ui_.values.clear();
    EXPECT_EQ((pair_.*method)(), StereoPair::kDone);
    EXPECT_EQ(pair_.columnOffset, -10);
  }

  static std::vector<std::vector<double>> Numbers(const std::string& path) {
    std::vector<std::vector<double>> lines;
    std::istringstream text(ReadFileBytes(path));
    for (std::string line; std::getline(text, line);) {
      std::istringstream words(line);
      lines.emplace_back();
      for (std::string word; words >> word;) lines.back().push_back(std::strtod(word.c_str(), nullptr));
    }
    return lines;
  }

  // The ground log holds the points of these pairs, whose rows are equal, in their order.
  static void ExpectGround(const std::vector<PlainPair>& pairs, double base = 10.0,
                           const ImageStart& left = {}, const ImageStart& right = {},
                           std::size_t nBefore = 0) {
    const auto lines = Numbers("GroundPts.log");
    ASSERT_EQ(lines.size(), pairs.size() + nBefore);
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      const auto& point = lines[nBefore + i];
      ASSERT_EQ(point.size(), 4U);
      const double leftCol = static_cast<double>(pairs[i].left.col + left.x);
      const double rightCol = static_cast<double>(pairs[i].right.col + right.x);
      const double row = static_cast<double>(pairs[i].left.row + left.y);
      const double depth = 1500.0 * base / (leftCol - rightCol);  // below the perspective centres
      EXPECT_NEAR(point[0], 1000.0 + (leftCol - 50.0) * depth / 1500.0, 1e-6);
      EXPECT_NEAR(point[1], 2000.0 - (row - 50.0) * depth / 1500.0, 1e-6);
      EXPECT_NEAR(point[2], 1500.0 - depth, 1e-6);
      EXPECT_NEAR(point[3], pairs[i].score, 1e-12);
    }
  }

  std::vector<std::int32_t> SortedIds() const {
    std::vector<std::int32_t> ids;
    for (std::int32_t i = 0; i < pair_.groundPoints->GetCount(); ++i) {
      ids.push_back(pair_.groundPoints->GetPoint(i)->id);
    }
    std::sort(ids.begin(), ids.end());
    return ids;
  }

  std::string LastStatus() const {
    const auto texts = ui_.EventsWith("status 0: ");
    return texts.empty() ? "" : texts.back().substr(10);
  }

  TempFolder folder_;
  TestFrontEnd ui_;
  StereoPair pair_;

 private:
  static void StoreSide(AerialPhoto& photo, const PlainImage& image, const ImageStart& start,
                        const std::string& stem) {
    SetBytes(photo.image, image);
    photo.image.m_header.xStart = start.x;
    photo.image.m_header.yStart = start.y;
    StorePhoto(photo, stem);
  }
};

}  // namespace corvane
