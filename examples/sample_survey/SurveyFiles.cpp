#include "sample_survey/SurveyFiles.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

#include "io/OutputFile.h"
#include "sample_survey/Random.h"

namespace corvane {

namespace {

constexpr std::int64_t kMillimetres = 1000;  // in a metre
constexpr std::size_t kBufferSize = std::size_t{1} << 20;

void AppendWhole(std::string& text, std::int64_t value) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  text.append(digits, end);
}

// Metres with three decimals.
void AppendMetres(std::string& text, std::int64_t millimetres) {
  const std::int64_t size = millimetres < 0 ? -millimetres : millimetres;
  if (millimetres < 0) text += '-';
  AppendWhole(text, size / kMillimetres);
  const auto rest = static_cast<int>(size % kMillimetres);
  const char decimals[4] = {'.', static_cast<char>('0' + rest / 100), static_cast<char>('0' + rest / 10 % 10),
                            static_cast<char>('0' + rest % 10)};
  text.append(decimals, 4);
}

void AppendMetres(std::string& text, double metres) {
  AppendMetres(text, ToMillimetres(metres));
}

void AppendPlace(std::string& text, double x, double y) {
  AppendMetres(text, x);
  text += ' ';
  AppendMetres(text, y);
}

// A text file that appears whole or not at all, written in large blocks.
class TextFile {
 public:
  explicit TextFile(const std::string& path) : file_(path) { text_.reserve(kBufferSize + 4096); }

  // The text that is not written yet, for appending.
  std::string& Text() {
    if (text_.size() >= kBufferSize) Flush();
    return text_;
  }

  bool Commit() {
    Flush();
    return file_.IsOpen() && file_.Commit();
  }

 private:
  void Flush() {
    if (file_.IsOpen()) file_.Write(text_);
    text_.clear();
  }

  OutputFile file_;
  std::string text_;
};

bool IsBareGround(const Scene& scene, double x, double y) {
  constexpr double kClear = 1.5;  // metres to all sides
  for (const double dx : {0.0, -kClear, kClear}) {
    for (const double dy : {0.0, -kClear, kClear}) {
      if (scene.SurfaceAt(x + dx, y + dy).pointClass != PointClass::Ground) return false;
    }
  }
  return true;
}

struct Area {
  const char* name;
  std::vector<std::int64_t> corners;  // x, y from the survey's corner in metres, counter-clockwise
};

// The areas of the fixed plan that lie within a square of `side` metres.
std::vector<Area> AreasWithin(double side) {
  std::vector<Area> areas = {
      {"valley", {80, 110, 130, 110, 145, 160, 130, 215, 80, 215, 65, 160}},
      {"scarp", {288, 141, 312, 159, 240, 255, 216, 237}},
      {"village", {128, 64, 192, 8, 256, 8, 320, 64, 320, 128, 192, 256, 128, 256}},
      {"wood", {258, 262, 380, 262, 380, 380, 320, 380, 258, 322}},
  };
  std::erase_if(areas, [side](const Area& area) {
    return static_cast<double>(*std::max_element(area.corners.begin(), area.corners.end())) > side;
  });
  return areas;
}

// Cells of whole metres, so that the grid has at most some 2000 columns and rows.
std::int64_t GroundCell(double side) {
  return static_cast<std::int64_t>((side - 1.0) / 2000.0) + 1;
}

void AppendFileList(std::string& text, const SampleSurvey& survey, std::int64_t nPoints) {
  const double side = survey.GetScene().GetSide();
  text += "SAMPLE SURVEY\n\nA made airborne laser survey with exact truth. Seed ";
  AppendWhole(text, static_cast<std::int64_t>(survey.GetOptions().seed));
  text += ". All lengths are metres.\nThe survey is a square of ";
  AppendMetres(text, side);
  text += " from its south-west corner at ";
  AppendPlace(text, kSurveyWest, kSurveySouth);
  text += ".\n\nFILES\n\nsurvey.txt        ";
  AppendWhole(text, nPoints);
  text +=
      " points, a line each: X Y Z class, in the order in which they were measured.\n"
      "                  Classes: 2 ground, 5 vegetation, 6 building, 7 low noise, 14 wire, 15 pylon, 18 "
      "high noise.\n"
      "                  Strips run north and overlap by a quarter; scan lines zigzag across them. Heights "
      "have\n"
      "                  an error of 0.03 (standard deviation) and up to 0.02 a strip; places one of 0.05.\n"
      "check_points.txt  X Y Z a line: the true height of bare ground, exact to 0.0005, away from the edge.\n"
      "areas.msk         mask of a rectangle (the middle of the square)";
  for (const Area& area : AreasWithin(side)) text += std::string(", ") + area.name;
  text +=
      ".\nground.asc        the true ground, an ESRI ASCII grid; heights at the cells' centres, cells of ";
  AppendWhole(text, GroundCell(side));
  text +=
      ".\npicture.lan       a grey picture from straight above, cells of 0.5, of the south-west corner or "
      "all "
      "of it:\n"
      "                  fields, roads along the villages, roofs and trees, the sun in the south-east.\n\n";
}

void AppendLandscape(std::string& text) {
  text +=
      "LANDSCAPE (places from the south-west corner, east and north; lines stray more beyond the first "
      "400)\n\n"
      "Valley, 20 deep and 180 wide: from south to north at 105 east (strays by up to 20), again every "
      "1100.\n"
      "Ridge, 14 high with a sharp crest: from west to east at 300 north (up to 25), again every 900.\n"
      "Scarp, a step of 6 within 5: along 0.8 * east + 0.6 * north = 330 (up to 8), again every 700.\n"
      "Power line: along 0.8 * east - 0.6 * north = 60, straight, again every 1300. Three wires, at -4, 0 "
      "and 4\n"
      "across, 22, 26 and 22 over the pylons' feet, sagging by 5 as parabolas; a pylon every 150, 28 "
      "high.\n\n";
}

void AppendBuilding(std::string& text, const Building& building) {
  constexpr const char* kRoofNames[] = {"flat", "gable", "hip"};
  text += kRoofNames[static_cast<int>(building.roof)];
  text += ' ';
  AppendPlace(text, building.x, building.y);
  text += ' ';
  AppendPlace(text, 2.0 * building.halfLength, 2.0 * building.halfWidth);
  for (const int side : {building.rotation.a, building.rotation.b}) {
    text += ' ';
    AppendWhole(text, side);
    text += '/';
    AppendWhole(text, building.rotation.c);
  }
  text += ' ';
  AppendPlace(text, building.eaveZ, building.eaveZ + building.rise);
  text += '\n';
}

void AppendBuildings(std::string& text, const Scene& scene) {
  constexpr std::size_t kListed = 500;
  const std::vector<Building>& buildings = scene.GetBuildings();
  text += "BUILDINGS (";
  AppendWhole(text, static_cast<std::int64_t>(buildings.size()));
  text += buildings.size() > kListed ? "; the first 500 are listed)\n\n" : ")\n\n";
  text +=
      "Roof, centre X Y, length, width, direction of the length, height of eave and ridge. A pitched roof "
      "has its\n"
      "ridge over the length; the four slopes of a hip roof are equally steep.\n\n";
  for (std::size_t i = 0; i < std::min(buildings.size(), kListed); ++i) AppendBuilding(text, buildings[i]);
}

}  // namespace

SampleSurvey::SampleSurvey(const SurveyOptions& options)
    : options_(options),
      scene_(options.seed, std::ceil(std::sqrt(static_cast<double>(options.nPoints)))),
      scan_(scene_, options.seed, options.nPoints) {}

bool WriteSurveyPoints(const SampleSurvey& survey, const std::string& path, std::int64_t& nPoints) {
  const LaserScan& scan = survey.GetScan();
  TextFile file(path);
  LaserScan::Returns buffer;
  nPoints = 0;
  for (std::int64_t strip = 0; strip < scan.GetStripCount(); ++strip) {
    for (std::int64_t pulse = 0; pulse < scan.GetPulsesPerStrip(); ++pulse) {
      std::string& text = file.Text();
      for (const SurveyPoint& point : scan.GetReturns(strip, pulse, buffer)) {
        for (const std::int64_t coordinate : {point.x, point.y, point.z}) {
          AppendMetres(text, coordinate);
          text += ' ';
        }
        AppendWhole(text, static_cast<int>(point.pointClass));
        text += '\n';
        ++nPoints;
      }
    }
  }
  return file.Commit();
}

bool WriteCheckPoints(const SampleSurvey& survey, const std::string& path, std::int64_t& nPoints) {
  const Scene& scene = survey.GetScene();
  const auto side = static_cast<std::int64_t>(scene.GetSide()) * kMillimetres;
  const std::int64_t margin = std::min(20 * kMillimetres, side / 8);
  const std::int64_t nWanted = std::clamp<std::int64_t>(survey.GetOptions().nPoints / 400, 100, 2000);
  TextFile file(path);
  nPoints = 0;
  for (std::int64_t attempt = 0; nPoints < nWanted && attempt < 100 * nWanted; ++attempt) {
    Random random(survey.GetOptions().seed, Random::kCheckPoint, attempt);
    const std::int64_t east = random.Between(margin, side - margin);
    const std::int64_t north = random.Between(margin, side - margin);
    const double x = kSurveyWest + static_cast<double>(east) / 1000.0;
    const double y = kSurveySouth + static_cast<double>(north) / 1000.0;
    if (!IsBareGround(scene, x, y)) continue;
    std::string& text = file.Text();
    AppendPlace(text, x, y);
    text += ' ';
    AppendMetres(text, scene.GroundHeight(x, y));
    text += '\n';
    ++nPoints;
  }
  return file.Commit();
}

bool WriteAreas(const SampleSurvey& survey, const std::string& path) {
  constexpr int kRectangle = 0;
  constexpr int kPolygon = 1;
  const auto side = static_cast<std::int64_t>(survey.GetScene().GetSide());
  const auto appendHead = [](std::string& text, int type, std::size_t nVertices) {
    AppendWhole(text, type);
    text += ' ';
    AppendWhole(text, static_cast<std::int64_t>(nVertices));
    text += '\n';
  };
  const auto appendVertex = [](std::string& text, std::int64_t east, std::int64_t north) {
    AppendPlace(text, kSurveyWest + static_cast<double>(east), kSurveySouth + static_cast<double>(north));
    text += '\n';
  };

  const std::vector<Area> areas = AreasWithin(survey.GetScene().GetSide());
  TextFile file(path);
  std::string& text = file.Text();
  AppendWhole(text, static_cast<std::int64_t>(areas.size()) + 1);
  text += '\n';
  appendHead(text, kRectangle, 2);
  appendVertex(text, side / 4, side / 4);
  appendVertex(text, side - side / 4, side - side / 4);
  for (const Area& area : areas) {
    appendHead(text, kPolygon, area.corners.size() / 2 + 1);
    for (std::size_t i = 0; i < area.corners.size(); i += 2)
      appendVertex(text, area.corners[i], area.corners[i + 1]);
    appendVertex(text, area.corners[0], area.corners[1]);  // closed
  }
  return file.Commit();
}

bool WriteGround(const SampleSurvey& survey, const std::string& path) {
  const Scene& scene = survey.GetScene();
  const std::int64_t cell = GroundCell(scene.GetSide());
  const std::int64_t nCells = static_cast<std::int64_t>(scene.GetSide()) / cell;
  TextFile file(path);
  std::string& head = file.Text();
  for (const char* label : {"ncols ", "nrows "}) {
    head += label;
    AppendWhole(head, nCells);
    head += '\n';
  }
  head += "xllcorner ";
  AppendMetres(head, kSurveyWest);
  head += "\nyllcorner ";
  AppendMetres(head, kSurveySouth);
  head += "\ncellsize ";
  AppendWhole(head, cell);
  head += "\nNODATA_value -4096\n";

  for (std::int64_t row = nCells - 1; row >= 0; --row) {
    std::string& text = file.Text();
    const double y = kSurveySouth + (static_cast<double>(row) + 0.5) * static_cast<double>(cell);
    for (std::int64_t col = 0; col < nCells; ++col) {
      const double x = kSurveyWest + (static_cast<double>(col) + 0.5) * static_cast<double>(cell);
      AppendMetres(text, scene.GroundHeight(x, y));
      text += col + 1 < nCells ? ' ' : '\n';
    }
  }
  return file.Commit();
}

bool WriteReadme(const SampleSurvey& survey, const std::string& path, std::int64_t nPoints) {
  TextFile file(path);
  std::string& text = file.Text();
  AppendFileList(text, survey, nPoints);
  AppendLandscape(text);
  text += "PYLONS (X Y, height of the foot)\n\n";
  for (const Pylon& pylon : survey.GetScene().GetPylons()) {
    AppendPlace(text, pylon.x, pylon.y);
    text += ' ';
    AppendMetres(text, pylon.baseZ);
    text += '\n';
  }
  text += '\n';
  AppendBuildings(text, survey.GetScene());
  return file.Commit();
}

}  // namespace corvane
