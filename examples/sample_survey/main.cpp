// sample-survey: writes a made laser survey with exact truth, the same bytes on every machine.

#include <CLI/CLI.hpp>
#include <cinttypes>
#include <cstdio>
#include <filesystem>
#include <string>

#include "sample_survey/AerialPicture.h"
#include "sample_survey/PhotoBlockFiles.h"
#include "sample_survey/SurveyFiles.h"

namespace corvane {

namespace {

// Writes all files into the folder. Names the one that can't be written.
bool WriteAll(const SurveyOptions& options, const std::filesystem::path& folder) {
  const SampleSurvey survey(options);
  const auto path = [&folder](const char* name) { return (folder / name).string(); };
  const auto written = [](bool good, const std::string& file) {
    if (!good) std::fprintf(stderr, "sample-survey: can't write %s\n", file.c_str());
    return good;
  };

  std::int64_t nPoints = 0;
  std::int64_t nCheckPoints = 0;
  const bool good =
      written(WriteSurveyPoints(survey, path("survey.txt"), nPoints), path("survey.txt")) &&
      written(WriteCheckPoints(survey, path("check_points.txt"), nCheckPoints), path("check_points.txt")) &&
      written(WriteAreas(survey, path("areas.msk")), path("areas.msk")) &&
      written(WriteGround(survey, path("ground.asc")), path("ground.asc")) &&
      written(WritePicture(survey, path("picture.lan")), path("picture.lan")) &&
      written(WriteReadme(survey, path("survey_README.txt"), nPoints), path("survey_README.txt"));
  if (!good) return false;
  std::printf("%s: %" PRId64 " points\n", path("survey.txt").c_str(), nPoints);
  std::printf("%s: %" PRId64 " check points\n", path("check_points.txt").c_str(), nCheckPoints);
  for (const char* name : {"areas.msk", "ground.asc", "picture.lan", "survey_README.txt"})
    std::printf("%s\n", path(name).c_str());
  return true;
}

// Writes the block of photos into its folder in that folder.
bool WriteBlock(const SurveyOptions& options, const std::filesystem::path& folder) {
  const std::filesystem::path blockFolder = folder / "block";
  std::string failed;
  if (!WritePhotoBlock(PhotoBlock(SampleSurvey(options)), blockFolder, failed)) {
    std::fprintf(stderr, "sample-survey: can't write %s\n", failed.c_str());
    return false;
  }
  std::printf("%s: %d photos, %s tells what else\n", blockFolder.string().c_str(),
              PhotoBlock::kStrips * PhotoBlock::kPhotos, (blockFolder / "block_README.txt").string().c_str());
  return true;
}

int Run(int argc, char** argv) {
  SurveyOptions options;
  std::string folder = ".";
  bool hasBlock = true;
  CLI::App app("Writes a made airborne laser survey with exact truth.", "sample-survey");
  app.add_option("--points", options.nPoints, "about how many points")
      ->check(CLI::Range(SurveyOptions::kMinPoints, SurveyOptions::kMaxPoints))
      ->capture_default_str();
  app.add_option("--seed", options.seed, "another number makes another survey")->capture_default_str();
  app.add_option("--folder", folder, "where the files go; made if missing")->capture_default_str();
  app.add_flag_callback(
      "--no-block", [&hasBlock] { hasBlock = false; }, "leave out the block of aerial photos, folder block");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 64;
  }

  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) {
    std::fprintf(stderr, "sample-survey: can't make the folder %s\n", folder.c_str());
    return 1;
  }
  return WriteAll(options, folder) && (!hasBlock || WriteBlock(options, folder)) ? 0 : 1;
}

}  // namespace

}  // namespace corvane

int main(int argc, char** argv) {
  return corvane::Run(argc, argv);
}
