#include "ImgProcess/FeaturePoint.h"

#include "io/InputFile.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "io/TextScanner.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::size_t kValuesPerLine = 20;

void AppendPoint(std::string& text, const FeaturePoint& point) {
  const double place[] = {point.x, point.y, point.scale, point.orientation};
  for (std::size_t i = 0; i < std::size(place); ++i) {
    if (i > 0) text += ' ';
    AppendFixed(text, place[i]);
  }
  text += '\n';
  for (std::size_t i = 0; i < point.values.size(); ++i) {
    if (i > 0 && i % kValuesPerLine == 0) text += '\n';
    text += ' ';
    AppendFixed(text, point.values[i]);
  }
  if (!point.values.empty()) text += '\n';
}

bool WriteList(OutputFile& file, const FeaturePointList& list) {
  if (list.empty()) return true;
  std::string text;
  AppendInt(text, static_cast<std::int64_t>(list.size()));
  text += ' ';
  AppendInt(text, static_cast<std::int64_t>(list.front().values.size()));
  text += '\n';
  for (const FeaturePoint& point : list) {
    AppendPoint(text, point);
    if (!file.Write(text)) return false;
    text.clear();
  }
  return true;
}

// False if the text does not hold the point whole. Its values are stored one by one, so that a number of them
// that is promised takes no memory.
bool ScanPoint(TextScanner& scanner, std::int32_t nValues, FeatureNumbers numbers, FeaturePoint& point) {
  for (double* const field : {&point.x, &point.y, &point.scale, &point.orientation}) {
    if (!scanner.ScanDouble(*field)) return false;
  }
  for (std::int32_t i = 0; i < nValues; ++i) {
    double value = 0.0;
    if (!scanner.ScanDouble(value)) return false;
    point.values.push_back(numbers == FeatureNumbers::Float ? static_cast<float>(value) : value);
  }
  return true;
}

// False if the text does not hold all points that its first line promises.
bool ScanList(const std::string& text, FeatureNumbers numbers, FeaturePointList& list) {
  TextScanner scanner(text);
  std::int32_t nPoints = 0;
  std::int32_t nValues = 0;
  if (!scanner.ScanInt(nPoints) || !scanner.ScanInt(nValues)) return false;
  for (std::int32_t id = 0; id < nPoints; ++id) {
    FeaturePoint point{.id = id};
    if (!ScanPoint(scanner, nValues, numbers, point)) return false;
    list.push_back(std::move(point));
  }
  return true;
}

}  // namespace

int WriteFeaturePoints(const std::string& path, const FeaturePointList& list) {
  OutputFile file(path);
  if (!file.IsOpen()) {
    ShowWarning(OpenErrorText(path));
    return -1;
  }
  if (WriteList(file, list) && file.Commit()) return 1;
  ShowWarning(WriteErrorText(path));
  return -1;
}

int ReadFeaturePoints(const std::string& path, FeaturePointList& list, FeatureNumbers numbers) {
  list.clear();
  const auto text = ReadWholeFile(path);
  if (!text) {
    ShowWarning(OpenErrorText(path));
    return -1;
  }
  if (text->empty() || ScanList(*text, numbers, list)) return 1;
  ShowWarning(OpenErrorText(path) + "\nIt is no list of descriptors, or it is cut short.");
  return -2;
}

}  // namespace corvane
