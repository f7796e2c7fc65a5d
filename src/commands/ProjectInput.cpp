#include "commands/ProjectInput.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>

#include "io/Paths.h"
#include "io/Target.h"

namespace corvane {

namespace {

// The text for a negative result of reading, by its decade; "" for one that has no text.
const char* ReadErrorText(int result) {
  constexpr const char* kTexts[] = {"Read Camera Calibration File Error!", "Read GPT File Error!",
                                    "Read Project File Error!"};
  const int decade = -result / 10;
  return decade < static_cast<int>(std::size(kTexts)) ? kTexts[decade] : "";
}

std::string BlockText(const PhotoProject& project) {
  return "Strips: " + std::to_string(project.stripCount) + ", photos: " + std::to_string(project.photoCount) +
         ", control points: " + std::to_string(project.controlCount) +
         ", pass points: " + std::to_string(project.passPoints.size()) +
         ", measurements: " + std::to_string(project.MeasurementCount()) + ".";
}

// " Title: the first of them and 2 more."; "" if there is none.
std::string FirstOf(const std::string& title, const std::vector<std::string>& names) {
  if (names.empty()) return "";
  const std::string others = names.size() > 1 ? " and " + std::to_string(names.size() - 1) + " more" : "";
  return " " + title + ": " + names.front() + others + ".";
}

// Whether at most one photo sees the point, however often.
bool IsInOnePhoto(const GroundPoint& point) {
  std::set<std::pair<int, int>> photos;
  for (std::size_t i = 0; i < point.stripIndices.size(); ++i) {
    photos.emplace(point.stripIndices[i], point.photoIndices[i]);
  }
  return photos.size() < 2;
}

// Why there can't be one solution, as far as it is seen from the block.
std::string ReasonText(const PhotoProject& project) {
  const auto nLone =
      std::count_if(project.passPoints.begin(), project.passPoints.end(), [&](const ImageMeasurement& pass) {
        return IsInOnePhoto(project.groundPoints[static_cast<std::size_t>(pass.groundIndex)]);
      });
  if (nLone > 0) return " Pass points in one photo alone: " + std::to_string(nLone) + ".";
  const std::int64_t nEquations = 2 * project.MeasurementCount();
  const std::int64_t nUnknowns = std::int64_t{kPhotoUnknowns} * project.photoCount +
                                 kPointUnknowns * static_cast<std::int64_t>(project.passPoints.size());
  return nEquations < nUnknowns ? " Equations: " + std::to_string(nEquations) + " for " +
                                      std::to_string(nUnknowns) + " unknowns."
                                : "";
}

std::string SolutionText(const PhotoProject& project, const BundleOutcome& outcome) {
  if (!outcome.isHeld) return " There is no memory for the equations.";
  const std::string reason = ReasonText(project);
  const bool isOne = outcome.isSolved && reason.empty();
  return isOne ? "" : " The equations have no single solution." + reason;
}

// Photos whose orientation file is another one's as well.
std::size_t CountSharing(const PhotoProject& project) {
  std::map<std::string, std::size_t> nPhotos;
  for (const auto& strip : project.photos) {
    for (const auto& photo : strip) ++nPhotos[ResolvedTarget(OrientationPath(photo->name))];
  }
  std::size_t nSharing = 0;
  for (const auto& [path, n] : nPhotos) nSharing += n > 1 ? n : 0;
  return nSharing;
}

std::string FilesText(const PhotoProject& project) {
  std::set<std::string> files;
  for (const std::string& path : project.writtenFiles) {
    if (FileExists(path)) files.insert(ResolvedTarget(path));
  }
  const std::size_t nSharing = CountSharing(project);
  const std::string sharing =
      nSharing > 0 ? " Photos that share an orientation file: " + std::to_string(nSharing) + "." : "";
  return sharing + " Files written: " + std::to_string(files.size()) + "." +
         FirstOf("Not written", project.unwrittenFiles);
}

}  // namespace

bool ReadProject(const std::string& path, PhotoProject& project) {
  const int result = project.Read(path);
  if (result >= 0) return true;
  // The ground points are what is read first, and so what is missed first.
  if (!FileExists(path)) Ui().SetStatusText(0, "There is no project file " + path + ".");
  const std::string text = ReadErrorText(result);
  if (!text.empty()) ShowWarning(text);
  return false;
}

CommandResult TellProject(const PhotoProject& project, const BundleOutcome& outcome) {
  Ui().SetStatusText(0, BlockText(project) + FirstOf("Photos without a block", project.photosWithoutBlock) +
                            SolutionText(project, outcome) + FilesText(project));
  return project.unwrittenFiles.empty() && outcome.isHeld ? CommandResult::Done : CommandResult::Failed;
}

}  // namespace corvane
