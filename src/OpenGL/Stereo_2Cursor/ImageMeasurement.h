#pragma once

#include <cstddef>
#include <string>

namespace corvane {

// Names of measured points are cut to this many bytes, when they are stored and when they are compared.
constexpr std::size_t kMaxPointName = 14;

// What a point of a block is for: its type in files, lists and records.
constexpr char kControlPoint = 'c';
constexpr char kPassPoint = 'p';

// A point measured in a photo.
struct ImageMeasurement {
  char type = kControlPoint;
  std::string name;  // at most kMaxPointName bytes
  double col = 0.0;  // of the whole scan, in pixels
  double row = 0.0;
  int groundIndex = -1;  // its place among the block's ground points; -1: none
};

}  // namespace corvane
