#pragma once

#include <cstdint>

#include "erdasimg/ErdasHeader.h"

namespace corvane {

// What a .lan lacks so much that it is no image.
enum class LanLack {
  Nothing,
  Header,  // the file is shorter than one
  Size,    // the header gives no rows, columns or bands
  Pixels,  // more than ErdasImg::kMaxFilledBytes and more than the bytes that the file holds
};

// By the header and the bytes of the file: the pixels are not looked at.
LanLack LackOf(const ErdasHeader& header, std::int64_t nFileBytes);

}  // namespace corvane
