#include "erdasimg/PixelCopy.h"

#include <gtest/gtest.h>

#include <vector>

namespace corvane {
namespace {

TEST(PixelCopy, CopiesPixelsOfAnySizeAtAnySteps) {
  std::vector<std::uint8_t> from(200);
  for (std::size_t i = 0; i < from.size(); ++i) from[i] = static_cast<std::uint8_t>(i + 1);
  for (std::size_t size = 1; size <= 9; ++size) {
    for (const std::size_t fromStep : {size, size + 2}) {
      for (const std::size_t toStep : {size, size + 3}) {
        std::vector<std::uint8_t> to(200);
        std::vector<std::uint8_t> expected(200);
        for (std::size_t i = 0; i < 15 * size; ++i) {
          expected[i / size * toStep + i % size] = from[i / size * fromStep + i % size];
        }
        CopyPixels(from.data(), fromStep, to.data(), toStep, 15, size);
        EXPECT_EQ(to, expected) << size << " " << fromStep << " " << toStep;
      }
    }
  }
}

TEST(PixelCopy, NoPixelsNeedNoPlaces) {
  CopyPixels(nullptr, 1, nullptr, 1, 0, 1);
  CopyPixels(nullptr, 1, nullptr, 3, -1, 1);
  CopyPixels(nullptr, 5, nullptr, 5, 0, 5);
}

}  // namespace
}  // namespace corvane
