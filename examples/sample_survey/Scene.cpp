#include "sample_survey/Scene.h"

#include <algorithm>
#include <cmath>

#include "sample_survey/Random.h"

namespace corvane {

namespace {

constexpr std::int64_t kPlanParcels = 6;

// The parcels at the south-west corner have a fixed plan, north at the top, so that the default survey shows
// everything: f field, v village, w wood.
constexpr const char* kPlan[kPlanParcels] = {
    "fffwww",  //
    "ffffww",  //
    "wfvfff",  //
    "wfvvff",  //
    "ffvvvf",  //
    "fffvff",
};

constexpr Rotation kRotations[] = {{1, 0, 1},   {4, 3, 5},   {3, 4, 5},  {12, 5, 13},  {5, 12, 13},
                                   {15, 8, 17}, {24, 7, 25}, {4, -3, 5}, {12, -5, 13}, {0, 1, 1}};

// Power lines run north-east, in the direction (3/5, 4/5), side by side.
constexpr double kLinePeriod = 1300.0;
constexpr double kLineOffset = 60.0;  // of the first line from the corner, across
constexpr double kPylonDistance = 150.0;
constexpr double kPylonOffset = 30.0;  // of the first pylon from the corner, along
constexpr double kPylonHeight = 28.0;
constexpr double kArmHeight = 22.0;
constexpr double kClearing = 9.0;  // nothing grows or stands nearer to the middle wire

struct WireForm {
  double across;  // from the middle of the line
  double height;  // over the pylon's foot
};
constexpr WireForm kWires[] = {{-4.0, kArmHeight}, {0.0, 26.0}, {4.0, kArmHeight}};
constexpr double kSag = 5.0;

LandUse LandUseOf(std::uint64_t seed, std::int64_t col, std::int64_t row) {
  if (col >= 0 && row >= 0 && col < kPlanParcels && row < kPlanParcels)
    return static_cast<LandUse>(kPlan[kPlanParcels - 1 - row][col]);
  constexpr char kUses[] = "fffwwwvvff";
  Random block(seed, Random::kParcelBlock, col >> 2, row >> 2);
  Random parcel(seed, Random::kParcelBlock, col, row + (std::int64_t{1} << 40));
  const std::uint64_t ofBlock = block.Next() % 10;
  return static_cast<LandUse>(kUses[parcel.Next() % 10 < 7 ? ofBlock : parcel.Next() % 10]);
}

double RoundedToMillimetres(double metres) {
  return static_cast<double>(ToMillimetres(metres)) / 1000.0;
}

}  // namespace

std::int64_t ToMillimetres(double metres) {
  return static_cast<std::int64_t>(std::floor(metres * 1000.0 + 0.5));
}

std::optional<double> Building::RoofHeight(double atX, double atY) const {
  const double dx = atX - x;
  const double dy = atY - y;
  const double along = std::abs((rotation.a * dx + rotation.b * dy) / rotation.c);
  const double across = std::abs((rotation.a * dy - rotation.b * dx) / rotation.c);
  if (along > halfLength || across > halfWidth) return std::nullopt;
  if (roof == RoofKind::Flat) return eaveZ;
  double inward = halfWidth - across;  // from the nearest eave
  if (roof == RoofKind::Hip) inward = std::min(inward, halfLength - along);
  return eaveZ + rise * inward / halfWidth;
}

std::optional<double> Tree::HalfHeight(double atX, double atY) const {
  const double dx = atX - x;
  const double dy = atY - y;
  const double share = (dx * dx + dy * dy) / (crownRadius * crownRadius);
  if (share >= 1.0) return std::nullopt;
  return crownHalfHeight * std::sqrt(1.0 - share);
}

std::optional<double> Tree::CrownTop(double atX, double atY) const {
  const std::optional<double> half = HalfHeight(atX, atY);
  return half ? std::optional(crownCentreZ + *half) : std::nullopt;
}

void CellLists::Build(double side, const std::vector<Box>& boxes) {
  nCells_ = static_cast<std::int64_t>(side / kCellSize) + 1;
  starts_.assign(static_cast<std::size_t>(nCells_ * nCells_) + 1, 0);
  const auto forEachCell = [this](const Box& box, auto&& visit) {
    const std::int64_t lastCol = CellNumber(box.east - kSurveyWest);
    const std::int64_t lastRow = CellNumber(box.north - kSurveySouth);
    for (std::int64_t row = CellNumber(box.south - kSurveySouth); row <= lastRow; ++row) {
      for (std::int64_t col = CellNumber(box.west - kSurveyWest); col <= lastCol; ++col) {
        visit(static_cast<std::size_t>(row * nCells_ + col));
      }
    }
  };

  for (const Box& box : boxes) forEachCell(box, [this](std::size_t cell) { ++starts_[cell + 1]; });
  for (std::size_t cell = 1; cell < starts_.size(); ++cell) starts_[cell] += starts_[cell - 1];
  items_.resize(starts_.back());
  std::vector<std::uint64_t> next(starts_.begin(), starts_.end() - 1);
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    forEachCell(boxes[i], [&](std::size_t cell) { items_[next[cell]++] = static_cast<std::uint32_t>(i); });
  }
}

CellLists::Range CellLists::At(double x, double y) const {
  const auto cell =
      static_cast<std::size_t>(CellNumber(y - kSurveySouth) * nCells_ + CellNumber(x - kSurveyWest));
  return {items_.data() + starts_[cell], items_.data() + starts_[cell + 1]};
}

// The row or column at an offset from the corner; beyond the square the outermost one.
std::int64_t CellLists::CellNumber(double offset) const {
  return std::clamp(static_cast<std::int64_t>(std::floor(offset / kCellSize)), std::int64_t{0}, nCells_ - 1);
}

// Where a point lies with regard to the nearest power line.
struct Scene::LinePlace {
  std::int64_t line;  // number of the line
  double across;      // metres from its middle
  double along;       // metres from pylon 0
};

Scene::Scene(std::uint64_t seed, double side) : seed_(seed), side_(side), terrain_(seed) {
  const auto nParcels = static_cast<std::int64_t>(side / kParcel) + 1;
  for (std::int64_t row = 0; row < nParcels; ++row) {
    for (std::int64_t col = 0; col < nParcels; ++col) PlantParcel(col, row);
  }
  BuildIndex();
}

bool Scene::IsWithin(double x, double y) const {
  const double east = x - kSurveyWest;
  const double north = y - kSurveySouth;
  return east >= 0.0 && north >= 0.0 && east <= side_ && north <= side_;
}

LandUse Scene::LandUseAt(double x, double y) const {
  return LandUseOf(seed_, static_cast<std::int64_t>(std::floor((x - kSurveyWest) / kParcel)),
                   static_cast<std::int64_t>(std::floor((y - kSurveySouth) / kParcel)));
}

void Scene::PlantParcel(std::int64_t col, std::int64_t row) {
  switch (LandUseOf(seed_, col, row)) {
    case LandUse::Village:
      return AddVillage(col, row);
    case LandUse::Wood:
      return AddWood(col, row);
    default:
      return AddField(col, row);
  }
}

// Four plots with a house and two garden trees each.
void Scene::AddVillage(std::int64_t col, std::int64_t row) {
  Random random(seed_, Random::kParcel, col, row);
  for (std::int64_t plot = 0; plot < 4; ++plot) {
    const double west =
        kSurveyWest + static_cast<double>(col) * kParcel + static_cast<double>(plot % 2) * 32.0;
    const double south =
        kSurveySouth + static_cast<double>(row) * kParcel + static_cast<double>(plot / 2) * 32.0;
    AddBuilding(west + 16.0, south + 16.0, col, row, plot);
    AddTree(west + 3.0, south + 3.0, random.Next(), 0.5);
    AddTree(west + 29.0, south + 28.0, random.Next(), 0.5);
  }
}

void Scene::AddBuilding(double x, double y, std::int64_t col, std::int64_t row, std::int64_t plot) {
  Random random(seed_, Random::kParcel, col, row * 4 + plot + (std::int64_t{1} << 40));
  Building building;
  building.roof = static_cast<RoofKind>(plot % 3);
  building.x = x + static_cast<double>(random.Between(-20, 20)) / 10.0;
  building.y = y + static_cast<double>(random.Between(-20, 20)) / 10.0;
  building.halfLength = static_cast<double>(random.Between(55, 90)) / 10.0;
  building.halfWidth = static_cast<double>(random.Between(35, 50)) / 10.0;
  building.rotation = kRotations[random.Next() % std::size(kRotations)];
  const double walls = static_cast<double>(random.Between(35, 90)) / 10.0;
  building.eaveZ = RoundedToMillimetres(GroundHeight(building.x, building.y) + walls);
  if (building.roof != RoofKind::Flat) building.rise = static_cast<double>(random.Between(20, 45)) / 10.0;
  if (!IsWithin(building.x, building.y)) return;
  if (std::abs(PlaceAtLine(building.x, building.y).across) < kClearing + building.halfLength) return;
  buildings_.push_back(building);
}

// Trees on a square pattern of 6.4 m, each up to 2 m off its place.
void Scene::AddWood(std::int64_t col, std::int64_t row) {
  constexpr double kStep = 6.4;
  Random random(seed_, Random::kParcel, col, row);
  for (int i = 0; i < 100; ++i) {
    const double offsetX = 4.0 * random.Uniform() - 2.0;
    const double offsetY = 4.0 * random.Uniform() - 2.0;
    const double x = kSurveyWest + static_cast<double>(col) * kParcel + (i % 10 + 0.5) * kStep + offsetX;
    const double y = kSurveySouth + static_cast<double>(row) * kParcel + (i / 10 + 0.5) * kStep + offsetY;
    AddTree(x, y, random.Next(), 1.0);
  }
}

// Up to three single trees.
void Scene::AddField(std::int64_t col, std::int64_t row) {
  Random random(seed_, Random::kParcel, col, row);
  for (std::int64_t i = random.Between(0, 3); i > 0; --i) {
    const double offsetX = 8.0 + 48.0 * random.Uniform();
    const double offsetY = 8.0 + 48.0 * random.Uniform();
    AddTree(kSurveyWest + static_cast<double>(col) * kParcel + offsetX,
            kSurveySouth + static_cast<double>(row) * kParcel + offsetY, random.Next(), 0.8);
  }
}

// A tree of 12 to 24 m, times `scale`. `bits` are random.
void Scene::AddTree(double x, double y, std::uint64_t bits, double scale) {
  const double height = scale * (12.0 + static_cast<double>(bits % 121) / 10.0);
  Tree tree;
  tree.x = x;
  tree.y = y;
  tree.crownRadius = scale * (2.5 + static_cast<double>(bits / 121 % 21) / 10.0);
  tree.crownHalfHeight = height * 0.35;
  tree.crownCentreZ = GroundHeight(x, y) + height - tree.crownHalfHeight;
  if (std::abs(PlaceAtLine(x, y).across) < kClearing + tree.crownRadius) return;
  trees_.push_back(tree);
}

void Scene::BuildIndex() {
  std::vector<CellLists::Box> boxes;
  for (const Building& building : buildings_) {
    const double reach = building.halfLength + building.halfWidth;
    boxes.push_back({building.x - reach, building.y - reach, building.x + reach, building.y + reach});
  }
  buildingCells_.Build(side_, boxes);
  boxes.clear();
  for (const Tree& tree : trees_) {
    const double reach = tree.crownRadius;
    boxes.push_back({tree.x - reach, tree.y - reach, tree.x + reach, tree.y + reach});
  }
  treeCells_.Build(side_, boxes);
}

std::optional<double> Scene::RoofHeight(double x, double y) const {
  std::optional<double> highest;
  for (const std::uint32_t i : buildingCells_.At(x, y)) {
    const std::optional<double> height = buildings_[i].RoofHeight(x, y);
    if (height && (!highest || *height > *highest)) highest = height;
  }
  return highest;
}

std::optional<HeightRange> Scene::HighestCrown(double x, double y) const {
  std::optional<HeightRange> highest;
  for (const std::uint32_t i : treeCells_.At(x, y)) {
    const Tree& tree = trees_[i];
    const std::optional<double> half = tree.HalfHeight(x, y);
    if (!half) continue;
    const HeightRange hit = {tree.crownCentreZ + *half, tree.crownCentreZ - *half};
    if (!highest || hit.topZ > highest->topZ) highest = hit;
  }
  return highest;
}

Scene::LinePlace Scene::PlaceAtLine(double x, double y) {
  const double east = x - kSurveyWest;
  const double north = y - kSurveySouth;
  const double across = 0.8 * east - 0.6 * north - kLineOffset;
  const double line = std::floor(across / kLinePeriod + 0.5);
  return {static_cast<std::int64_t>(line), across - line * kLinePeriod,
          0.6 * east + 0.8 * north - kPylonOffset};
}

Pylon Scene::PylonOf(std::int64_t line, std::int64_t number) const {
  const double across = kLineOffset + static_cast<double>(line) * kLinePeriod;
  const double along = kPylonOffset + static_cast<double>(number) * kPylonDistance;
  Pylon pylon;
  pylon.x = RoundedToMillimetres(kSurveyWest + 0.8 * across + 0.6 * along);
  pylon.y = RoundedToMillimetres(kSurveySouth - 0.6 * across + 0.8 * along);
  pylon.baseZ = RoundedToMillimetres(GroundHeight(pylon.x, pylon.y));
  return pylon;
}

std::optional<double> Scene::WireHeight(double x, double y, double reach) const {
  const LinePlace place = PlaceAtLine(x, y);
  for (const WireForm& wire : kWires) {
    if (std::abs(place.across - wire.across) > reach) continue;
    const double span = std::floor(place.along / kPylonDistance);
    const double t = place.along / kPylonDistance - span;
    const double from = PylonOf(place.line, static_cast<std::int64_t>(span)).baseZ;
    const double to = PylonOf(place.line, static_cast<std::int64_t>(span) + 1).baseZ;
    return from + (to - from) * t + wire.height - 4.0 * kSag * t * (1.0 - t);
  }
  return std::nullopt;
}

std::optional<HeightRange> Scene::PylonHeights(double x, double y) const {
  constexpr double kHalfTower = 1.2;
  constexpr double kHalfArm = 0.4;
  const LinePlace place = PlaceAtLine(x, y);
  if (std::abs(place.across) > 5.0) return std::nullopt;
  const double number = std::floor(place.along / kPylonDistance + 0.5);
  const double along = std::abs(place.along - number * kPylonDistance);
  const bool onTower = along <= kHalfTower && std::abs(place.across) <= kHalfTower;
  if (!onTower && along > kHalfArm) return std::nullopt;
  const Pylon pylon = PylonOf(place.line, static_cast<std::int64_t>(number));
  if (onTower) return HeightRange{pylon.baseZ + kPylonHeight, pylon.baseZ};
  return HeightRange{pylon.baseZ + kArmHeight, pylon.baseZ + kArmHeight};
}

Surface Scene::SurfaceAt(double x, double y) const {
  Surface surface = {GroundHeight(x, y), PointClass::Ground};
  const std::optional<double> roof = RoofHeight(x, y);
  if (roof && *roof > surface.z) surface = {*roof, PointClass::Building};
  const std::optional<HeightRange> crown = HighestCrown(x, y);
  if (crown && crown->topZ > surface.z) surface = {crown->topZ, PointClass::Vegetation};
  return surface;
}

std::vector<Pylon> Scene::GetPylons() const {
  std::vector<Pylon> pylons;
  const auto nLines = static_cast<std::int64_t>(side_ * 1.4 / kLinePeriod) + 1;
  const auto nAlong = static_cast<std::int64_t>(side_ * 1.4 / kPylonDistance) + 1;
  for (std::int64_t line = -nLines; line <= nLines; ++line) {
    for (std::int64_t number = -nAlong; number <= nAlong; ++number) {
      const Pylon pylon = PylonOf(line, number);
      if (IsWithin(pylon.x, pylon.y)) pylons.push_back(pylon);
    }
  }
  return pylons;
}

}  // namespace corvane
