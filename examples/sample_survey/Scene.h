#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "sample_survey/Terrain.h"

namespace corvane {

// What a laser pulse is reflected by; the numbers are the customary point classes.
enum class PointClass {
  Ground = 2,
  Vegetation = 5,
  Building = 6,
  LowNoise = 7,
  Wire = 14,
  Pylon = 15,
  HighNoise = 18,
};

enum class LandUse : char { Field = 'f', Village = 'v', Wood = 'w' };

enum class RoofKind { Flat, Gable, Hip };

// A rotation with whole-numbered sides: cosine a / c, sine b / c.
struct Rotation {
  int a = 1;
  int b = 0;
  int c = 1;
};

// A building on a rectangular plan. Its length runs along the rotation's direction; a pitched roof has its
// ridge over the length. Metres; positions and heights are whole millimetres.
struct Building {
  RoofKind roof = RoofKind::Flat;
  double x = 0.0;
  double y = 0.0;
  double halfLength = 0.0;
  double halfWidth = 0.0;
  Rotation rotation;
  double eaveZ = 0.0;
  double rise = 0.0;  // from eave to ridge; 0 for a flat roof

  // Height of the roof, or nothing beside it.
  std::optional<double> RoofHeight(double atX, double atY) const;
};

// A tree whose crown is an ellipsoid of revolution. Metres.
struct Tree {
  double x = 0.0;
  double y = 0.0;
  double crownRadius = 0.0;
  double crownHalfHeight = 0.0;
  double crownCentreZ = 0.0;

  // How high and deep the crown reaches above and below its centre at a place; nothing beside it.
  std::optional<double> HalfHeight(double atX, double atY) const;
  // Height of the crown's top.
  std::optional<double> CrownTop(double atX, double atY) const;
};

// The heights between which a beam straight down passes through something.
struct HeightRange {
  double topZ = 0.0;
  double bottomZ = 0.0;
};

struct Pylon {
  double x = 0.0;
  double y = 0.0;
  double baseZ = 0.0;
};

// Something a beam straight down meets first.
struct Surface {
  double z = 0.0;
  PointClass pointClass = PointClass::Ground;
};

// Lists of things by square cells of the ground, for "what may stand here?".
class CellLists {
 public:
  static constexpr double kCellSize = 8.0;  // metres

  struct Box {
    double west, south, east, north;
  };

  void Build(double side, const std::vector<Box>& boxes);

  // Positions in the list of boxes whose boxes touch the cell of (x, y), ascending.
  struct Range {
    const std::uint32_t* first;
    const std::uint32_t* last;
    const std::uint32_t* begin() const { return first; }
    const std::uint32_t* end() const { return last; }
  };
  Range At(double x, double y) const;

 private:
  std::int64_t CellNumber(double offset) const;

  std::int64_t nCells_ = 0;  // along one side
  std::vector<std::uint64_t> starts_;
  std::vector<std::uint32_t> items_;
};

// What stands on the terrain within a square of `side` metres at the survey's south-west corner: villages,
// woods, single trees and power lines. The same things stand at the same places whatever the side.
class Scene {
 public:
  // Land is used in squares of this side, in metres.
  static constexpr double kParcel = 64.0;

  Scene(std::uint64_t seed, double side);

  double GroundHeight(double x, double y) const { return terrain_.GroundHeight(x, y); }
  const Terrain& GetTerrain() const { return terrain_; }
  double GetSide() const { return side_; }
  bool IsWithin(double x, double y) const;  // the square, its edge included

  LandUse LandUseAt(double x, double y) const;

  // Heights of what covers the ground at (x, y), if anything does.
  std::optional<double> RoofHeight(double x, double y) const;
  std::optional<HeightRange> HighestCrown(double x, double y) const;
  // A wire within `reach` metres of (x, y).
  std::optional<double> WireHeight(double x, double y, double reach) const;
  // From the foot to the top of a pylon's tower; the one height of its arm.
  std::optional<HeightRange> PylonHeights(double x, double y) const;

  // The highest of ground, roof and crown: what a photo from above shows. Wires and pylons are left out.
  Surface SurfaceAt(double x, double y) const;

  const std::vector<Building>& GetBuildings() const { return buildings_; }
  const std::vector<Tree>& GetTrees() const { return trees_; }
  // The pylons within the square, line by line.
  std::vector<Pylon> GetPylons() const;

 private:
  struct LinePlace;

  void PlantParcel(std::int64_t col, std::int64_t row);
  void AddVillage(std::int64_t col, std::int64_t row);
  void AddBuilding(double x, double y, std::int64_t col, std::int64_t row, std::int64_t plot);
  void AddWood(std::int64_t col, std::int64_t row);
  void AddField(std::int64_t col, std::int64_t row);
  void AddTree(double x, double y, std::uint64_t bits, double scale);
  void BuildIndex();
  static LinePlace PlaceAtLine(double x, double y);
  Pylon PylonOf(std::int64_t line, std::int64_t number) const;

  std::uint64_t seed_;
  double side_;
  Terrain terrain_;
  std::vector<Building> buildings_;
  std::vector<Tree> trees_;
  CellLists buildingCells_;
  CellLists treeCells_;
};

// The value rounded to whole millimetres.
std::int64_t ToMillimetres(double metres);

}  // namespace corvane
