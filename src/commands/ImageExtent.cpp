#include "commands/ImageExtent.h"

#include "forms/ExtentInput.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

// Kept: the form also asks for a value, which nobody looks at.
int AskExtent(ExtentWindow& window, float& cellSize) {
  ExtentInput input;
  input.minCorrCoeffLabel = "No-Data Value:";
  return input.AskAsShown(window, &cellSize);
}

GroundExtent RectOf(const ExtentWindow& window) {
  return {.minX = window.xStart, .minY = window.yStart, .maxX = window.xEnd, .maxY = window.yEnd};
}

}  // namespace

int GetGroundExtent(const ErdasHeader& header, GroundExtent& rect) {
  float cellSize;  // Kept: asked for, and nobody looks at it
  return GetGroundExtent(header, rect, cellSize);
}

int GetGroundExtent(const ErdasHeader& header, GroundExtent& rect, float& cellSize) {
  ExtentWindow window = {.xStart = header.xMap,
                         .yStart = header.rows * double{header.yCell} + header.yMap,
                         .xEnd = header.cols * double{header.xCell} + header.xMap,
                         .yEnd = header.yMap};
  float entered = header.xCell;
  if (AskExtent(window, entered) < 0) return -1;
  rect = RectOf(window);
  cellSize = entered;
  return 0;
}

int GetPixelExtent(const ErdasHeader& header, ImageRect& rect) {
  const double left = header.xStart;
  const double top = header.yStart;
  ExtentWindow window = {
      .xStart = left, .yStart = top, .xEnd = left + header.cols - 1.0, .yEnd = top + header.rows - 1.0};
  float cellSize = 1.0f;  // Kept: as above
  if (AskExtent(window, cellSize) < 0) return -1;
  rect = {.left = TruncateSaturated(window.xStart),
          .top = TruncateSaturated(window.yStart),
          .right = TruncateSaturated(window.xEnd),
          .bottom = TruncateSaturated(window.yEnd)};
  return 0;
}

int GetExtent(const GroundExtent& bounds, GroundExtent& rect, float& cellSize, float& z) {
  ExtentInput input;
  input.minCorrCoeffLabel = "Z Value:";
  input.minCorrCoeff = z;
  const double extent4[4] = {bounds.minX, bounds.maxX, bounds.minY, bounds.maxY};
  ExtentWindow window;
  if (input.Ask(extent4, window, &cellSize) < 0) return -1;
  rect = RectOf(window);
  z = input.minCorrCoeff;
  return 0;
}

}  // namespace corvane
