#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "erdasimg/ErdasImg.h"

namespace corvane {

// The bytes of a row as far as the band holds them: none for a row or band that is not there.
std::span<std::uint8_t> HeldRow(const ErdasImg& image, std::int64_t row, std::int64_t band);

// Copies `count` pixels of `size` bytes each, that stand `fromStep` and `toStep` bytes apart; those that lie
// one behind the other on both sides in one piece.
void CopyPixels(const std::uint8_t* from, std::size_t fromStep, std::uint8_t* to, std::size_t toStep,
                std::int64_t count, std::size_t size);

}  // namespace corvane
