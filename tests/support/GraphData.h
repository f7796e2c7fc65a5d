#pragma once

#include <string>
#include <vector>

#include "ui/GraphView.h"

namespace corvane {

constexpr Colour kRed{255, 0, 0};
constexpr Colour kBlue{0, 0, 255};

// A graph that is nothing but its elements.
struct GraphData : GraphView {
  std::vector<GraphElement> elements;
  PixelSize size{400, 300};

  GraphData() = default;
  explicit GraphData(std::vector<GraphElement> given) : elements(std::move(given)) {}

  std::string GetTitle() const override { return "Data Graph"; }
  std::span<const GraphElement> GetElements() const override { return elements; }
  PixelSize GetSize() const override { return size; }
};

}  // namespace corvane
