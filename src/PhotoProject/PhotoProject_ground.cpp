// The ground point file: a word, then the control points and the pass points, each group with its count
// before it. A point is a name and its dimension, then X, Y, Z, then their sigmas.

#include "PhotoProject/PhotoProject.h"
#include "PhotoProject/ProjectText.h"
#include "io/InputFile.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr int kNotOpened = -11;
constexpr int kLineFailed = -12;

bool ScanGroundPoint(TextScanner& text, GroundPoint& point) {
  return text.ScanWord(point.name) && text.ScanInt(point.dimension) &&
         ScanReals(text, {&point.x, &point.y, &point.z}) &&
         ScanReals(text, {&point.sigmaX, &point.sigmaY, &point.sigmaZ});
}

// Adds the points of one group to the project, and to `count` one for each.
bool ReadGroup(TextScanner& text, char type, PhotoProject& project, int& count) {
  std::int32_t nPoints = 0;
  if (!text.ScanInt(nPoints) || nPoints < 0) return false;
  for (std::int32_t i = 0; i < nPoints; ++i) {
    GroundPoint point;
    point.type = type;
    if (!ScanGroundPoint(text, point)) return false;
    project.AddGroundPoint(std::move(point));
    ++count;
  }
  return true;
}

int ReadGroups(const std::string& path, PhotoProject& project) {
  const auto content = ReadWholeFile(path);
  if (!content) {
    Ui().SetStatusText(0, "The ground point file " + path + " does not open.");
    return kNotOpened;
  }
  TextScanner text(*content);
  std::string unread;
  text.ScanWord(unread);
  if (ReadGroup(text, kControlPoint, project, project.controlCount) &&
      ReadGroup(text, kPassPoint, project, project.passCount)) {
    return 1;
  }
  TellWhereStopped(path, *content, text);
  return kLineFailed;
}

}  // namespace

int PhotoProject::ReadGroundPoints(const std::string& path) {
  return ReadWithinMemory(path, kLineFailed, [&] { return ReadGroups(path, *this); });
}

}  // namespace corvane
