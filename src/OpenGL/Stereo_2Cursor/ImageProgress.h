#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "erdasimg/ErdasImg.h"
#include "ui/FrontEnd.h"

namespace corvane {

// Tells in the message pane how far an image is made: "TEXT, 40 %". Of one that takes no time nothing is
// told.
class ImageProgress {
 public:
  static constexpr std::int64_t kManyCells = std::int64_t{1} << 26;

  ImageProgress(std::string text, const ImageSize& size)
      : text_(std::move(text)), isLong_(std::int64_t{size.cx} * size.cy > kManyCells) {}

  void Tell(std::int64_t nDone, std::int64_t nAll) const {
    if (isLong_) Ui().SetStatusText(0, text_ + ", " + std::to_string(100 * nDone / nAll) + " %");
  }

 private:
  std::string text_;
  bool isLong_;
};

}  // namespace corvane
