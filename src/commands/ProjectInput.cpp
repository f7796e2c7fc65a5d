#include "commands/ProjectInput.h"

#include <algorithm>

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

// Why there can't be one solution, as far as it is seen from the block.
std::string ReasonText(const PhotoProject& project) {
  const auto nLone =
      std::count_if(project.passPoints.begin(), project.passPoints.end(), [&](const ImageMeasurement& pass) {
        return project.groundPoints[static_cast<std::size_t>(pass.groundIndex)].stripIndices.size() < 2;
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

std::string UnwrittenText(const std::vector<std::string>& files) {
  if (files.empty()) return "";
  return " Not written: " + files.front() +
         (files.size() > 1 ? " and " + std::to_string(files.size() - 1) + " more." : ".");
}

}  // namespace

bool ReadProject(const std::string& path, PhotoProject& project) {
  const int result = project.Read(path);
  if (result >= 0) return true;
  const std::string text = ReadErrorText(result);
  if (!text.empty()) ShowWarning(text);
  return false;
}

CommandResult TellProject(const PhotoProject& project, const BundleOutcome& outcome) {
  const std::vector<std::string>& unwritten = project.unwrittenFiles;
  const auto nTried =
      static_cast<std::size_t>(project.photoCount) + 1 + static_cast<std::size_t>(outcome.nFiles);
  Ui().SetStatusText(0, BlockText(project) + SolutionText(project, outcome) + " Files written: " +
                            std::to_string(nTried - unwritten.size()) + "." + UnwrittenText(unwritten));
  return unwritten.empty() && outcome.isHeld ? CommandResult::Done : CommandResult::Failed;
}

}  // namespace corvane
