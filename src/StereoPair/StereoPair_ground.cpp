// From places in both images to points on the ground.

#include "StereoPair/GridMatching.h"
#include "StereoPair/MatchTexts.h"
#include "StereoPair/PairFile.h"
#include "StereoPair/StereoPair.h"
#include "io/Paths.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

Point2 InScan(const Point2& place, const ErdasHeader& header) {
  return {place.x + header.xStart, place.y + header.yStart};
}

PointRecord RecordOf(std::int32_t id, const Point3& place, double score) {
  return {id, place.x, place.y, place.z, score};
}

constexpr std::int64_t kLeastColumns = 5;  // of a pair
constexpr std::int64_t kMostColumns = 6;   // that are read

// A first line that is empty is where reading ends.
std::string NotesOn(const PairLines& lines) {
  std::string text;
  if (lines.nLeftOut > 0) text += " Left out: " + Counted(lines.nLeftOut, "line") + " without a pair.";
  if (lines.nColumns > 0 && lines.nColumns < kLeastColumns) {
    text +=
        " The first line decides on separator and columns, and has " + Counted(lines.nColumns, "field") + ".";
  }
  if (lines.nColumns > kMostColumns) {
    text += " Of " + Counted(lines.nColumns, "column") + " six are read.";
  }
  if (lines.stopLine > 0) {
    text += " Reading ended at line " + std::to_string(lines.stopLine) +
            (lines.stopIsEmpty ? ", which is empty." : ", which begins with no number.");
  }
  return text;
}

int FailToRead(const std::string& text) {
  ShowWarning(text);
  return StereoPair::kNoInput;
}

// Writes groundPoints, of which the last `nNew` are those of the pair file, and tells what has come out.
int StoreIntersections(StereoPair& pair, std::int32_t nNew, const std::string& path,
                       const std::string& notes) {
  if (nNew == 0) {
    pair.TellOutcome("The file holds no pair." + UnwrittenText(path, "there are no points") + notes);
    return StereoPair::kNoInput;
  }
  const TINPoints& points = *pair.groundPoints;
  std::string sentence = Counted(nNew, "pair") + " intersected." + UnplacedText(points, nNew);
  const bool isWritten = pair.SaveGroundPoints(path) > 0;
  if (isWritten) sentence += " Written: " + FileName(path) + " (" + PointsText(points.nPoints, nNew) + ").";
  pair.TellOutcome(sentence + OriginText(pair) + notes);
  return isWritten ? StereoPair::kDone : StereoPair::kNotWritten;
}

int IntersectChosenFile(StereoPair& pair) {
  const auto pairPath = ChooseFile({.filter = "Match Point Pair Files (*.txt)|*.txt|All Files (*.*)|*.*|",
                                    .title = "Please choose an match point pair file"});
  if (!pairPath) return StereoPair::kCancelled;
  const std::string pointsPath = DerivedName(*pairPath, ".pts");
  const bool isInput = IsSameFile(pointsPath, *pairPath) || !pair.FindInputAmong({pointsPath}).empty();
  if (isInput) return RefuseToReplace(pointsPath);

  TINPoints left;
  TINPoints right;
  PairLines lines;
  if (StereoPair::ReadPairsAsPoints(*pairPath, left, right, &lines) < 0) {
    return FailToRead(OpenErrorText(*pairPath));
  }
  if (pair.AddPointListsToGround(&left, &right, pair.GetGroundPoints()) < 0) {
    return FailToRead("There is no memory for the ground points.");
  }
  return StoreIntersections(pair, left.nPoints, pointsPath, NotesOn(lines));
}

}  // namespace

int StereoPair::IntersectImagePoints(const Point2& left, const Point2& right, Point3& out) const {
  const double pLeft[2] = {left.x, left.y};
  const double pRight[2] = {right.x, right.y};
  double place[3];
  IntersectRays(*leftPhoto, *rightPhoto, pLeft, pRight, place);
  out = {place[0], place[1], place[2]};
  return 1;
}

int StereoPair::IntersectSubsetPoints(const Point2& left, const Point2& right, const ErdasHeader& leftHeader,
                                      const ErdasHeader& rightHeader, Point3& out) const {
  return IntersectImagePoints(InScan(left, leftHeader), InScan(right, rightHeader), out);
}

int StereoPair::AddPairsToGround(std::span<const MatchPair> pairs, TINPoints& points) const {
  for (const MatchPair& pair : pairs) {
    Point3 place;
    IntersectImagePoints(pair.left, pair.right, place);
    if (points.AddPoint(RecordOf(points.nPoints, place, pair.score)) < 0) return -1;
  }
  return 1;
}

int StereoPair::AddPointListsToGround(const TINPoints* left, const TINPoints* right,
                                      TINPoints& points) const {
  if (!left || !right) return -1;
  if (left->nPoints != right->nPoints) return -2;
  for (std::int32_t i = 0; i < left->nPoints; ++i) {
    const PointRecord& l = *left->GetPoint(i);
    const PointRecord& r = *right->GetPoint(i);
    if (l.id < 0 || r.id < 0) continue;
    Point3 place;
    IntersectImagePoints({l.x, l.y}, {r.x, r.y}, place);
    if (points.AddPoint(RecordOf(l.id, place, l.value)) < 0) return -1;
  }
  return 1;
}

int StereoPair::AddGroundPoint(const MatchPair& pair, TINPoints& points) const {
  Point3 place;
  IntersectSubsetPoints(pair.left, pair.right, *leftPhoto->image.GetHeader(), *rightPhoto->image.GetHeader(),
                        place);
  return points.AddPoint(RecordOf(pair.id, place, pair.score));
}

TINPoints& StereoPair::GetGroundPoints() {
  if (!groundPoints) groundPoints = std::make_unique<TINPoints>();
  return *groundPoints;
}

int StereoPair::IntersectPairFile() {
  ownsPhotos = true;
  if (RunMatchDialog() < 0) return kCancelled;
  return RunOpenPair(*this, [this] { return IntersectChosenFile(*this); });
}

}  // namespace corvane
