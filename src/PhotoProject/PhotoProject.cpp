#include "PhotoProject/PhotoProject.h"

#include <algorithm>

#include "PhotoProject/ProjectText.h"
#include "io/NumberText.h"
#include "io/Paths.h"

namespace corvane {

namespace {

// The key of a ground point: it is found by both together.
std::string TypeAndName(char type, std::string_view pointName) {
  std::string key(1, type);
  return key += PointName(pointName);
}

int FoundPlace(const std::unordered_map<std::string, int>& places, const std::string& key) {
  const auto found = places.find(key);
  return found == places.end() ? -1 : found->second;
}

}  // namespace

std::string OrientationPath(const std::string& photoName) {
  constexpr std::size_t kExtension = 3;
  return photoName.substr(0, photoName.size() - std::min(photoName.size(), kExtension)) + "orn";
}

int PhotoProject::FindGroundPoint(char type, std::string_view pointName) const {
  return FoundPlace(groundPlaces_, TypeAndName(type, pointName));
}

int PhotoProject::FindMeasurement(const std::vector<ImageMeasurement>& list, const ImageMeasurement& record) {
  const auto found = std::find_if(list.begin(), list.end(), [&](const ImageMeasurement& entry) {
    return PointName(entry.name) == PointName(record.name);
  });
  return found == list.end() ? -1 : static_cast<int>(found - list.begin());
}

int PhotoProject::FindPassPoint(std::string_view pointName) const {
  return FoundPlace(passPlaces_, std::string(PointName(pointName)));
}

int PhotoProject::AddGroundPoint(GroundPoint point) {
  const int place = static_cast<int>(groundPoints.size());
  point.name = std::string(PointName(point.name));
  groundPlaces_.try_emplace(TypeAndName(point.type, point.name), place);
  groundPoints.push_back(std::move(point));
  return place;
}

int PhotoProject::AddPassPoint(const ImageMeasurement& measurement) {
  const int place = static_cast<int>(passPoints.size());
  ImageMeasurement& added = passPoints.emplace_back(measurement);
  added.name = std::string(PointName(added.name));
  passPlaces_.try_emplace(added.name, place);
  return place;
}

AerialPhoto* PhotoProject::GetPhoto(int strip, int photo) const {
  if (strip < 0 || static_cast<std::size_t>(strip) >= photos.size()) return nullptr;
  const auto& row = photos[static_cast<std::size_t>(strip)];
  if (photo < 0 || static_cast<std::size_t>(photo) >= row.size()) return nullptr;
  return row[static_cast<std::size_t>(photo)].get();
}

void PhotoProject::BuildModelNames() {
  for (const auto& strip : photos) {
    for (std::size_t right = 1; right < strip.size(); ++right) {
      modelNames.push_back(FileName(strip[right - 1]->name) + "   " + FileName(strip[right]->name));
    }
  }
}

bool PhotoProject::LocateModel(int modelIndex, int& strip, int& photo) const {
  if (modelIndex < 0) return false;
  int left = modelIndex;
  for (std::size_t i = 0; i < stripPhotoCounts.size(); ++i) {
    const int nModels = std::max(stripPhotoCounts[i] - 1, 0);
    if (left < nModels) {
      strip = static_cast<int>(i);
      photo = left;
      return true;
    }
    left -= nModels;
  }
  return false;
}

void PhotoProject::NoteFile(const std::string& path, bool isWritten) {
  (isWritten ? writtenFiles : unwrittenFiles).push_back(path);
}

std::int64_t PhotoProject::MeasurementCount() const {
  std::int64_t count = 0;
  for (const auto& strip : photos) {
    for (const auto& photo : strip) count += static_cast<std::int64_t>(photo->measurements.size());
  }
  return count;
}

void PhotoProject::DumpGroundPoints(std::string& text) const {
  constexpr int kStreamPrecision = 6;  // significant digits
  for (const GroundPoint& point : groundPoints) {
    const bool isThere = point.type == kControlPoint || point.type == kPassPoint;
    text += point.name + ", " + (isThere ? std::string(1, point.type) : "This point was deleted") + "\n";
    AppendNumbers(text, {point.x, point.y, point.z}, kStreamPrecision);
    text += '\n';
    for (std::size_t i = 0; i < point.stripIndices.size(); ++i) {
      AppendInt(text, point.stripIndices[i] + 1);
      text += ", ";
      AppendInt(text, point.photoIndices[i] + 1);
      text += '\n';
    }
  }
}

}  // namespace corvane
