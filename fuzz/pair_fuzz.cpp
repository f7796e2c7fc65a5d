// Any bytes as a pair file. Both readers find the same pairs, as far as the one goes that ends at a line
// without a number; what has been read is written with as many lines.

#include <cmath>
#include <cstdlib>
#include <string>

#include "FuzzFolder.h"
#include "StereoPair/PairFile.h"
#include "StereoPair/StereoPair.h"
#include "io/InputFile.h"
#include "io/TextScanner.h"

namespace corvane {
namespace {

constexpr std::size_t kWholeLine = 255;
constexpr std::size_t kLongLine = 100000;

void Expect(bool isTrue) {
  if (!isTrue) std::abort();
}

bool SameNumber(double a, double b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

void ExpectPlace(const PointRecord& point, const Point2& place, double score, std::int32_t id) {
  Expect(point.id == id);
  Expect(SameNumber(point.x, place.x) && SameNumber(point.y, place.y) && SameNumber(point.value, score));
}

void CheckReaders(const std::string& path) {
  std::vector<MatchPair> pairs;
  TINPoints left;
  TINPoints right;
  PairLines lines;
  Expect(StereoPair::ReadPairs(path, pairs) == 1);
  Expect(StereoPair::ReadPairsAsPoints(path, left, right, &lines) == 1);
  const auto nPairs = static_cast<std::int32_t>(pairs.size());
  Expect(left.nPoints == right.nPoints && left.nPoints <= nPairs);
  Expect(lines.stopLine > 0 || left.nPoints == nPairs);
  for (std::int32_t i = 0; i < left.nPoints; ++i) {
    const MatchPair& pair = pairs[static_cast<std::size_t>(i)];
    ExpectPlace(*left.GetPoint(i), pair.left, pair.score, i);
    ExpectPlace(*right.GetPoint(i), pair.right, pair.score, i);
  }

  if (pairs.empty()) return;  // a file takes far longer to write than to read
  const std::string copy = FuzzPath("copy.txt");
  Expect(StereoPair::WritePairs(copy, pairs, 0, 1) == 1);
  std::vector<MatchPair> again;
  Expect(StereoPair::ReadPairs(copy, again) == 1);
  // Of a longer first line, as numbers of hundreds of digits make it, not all columns are counted.
  if (FirstLine(ReadWholeFile(copy).value(), kLongLine).size() > kWholeLine) return;
  Expect(again.size() == pairs.size());
  for (std::size_t i = 0; i < pairs.size(); ++i) Expect(again[i].id == pairs[i].id);
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  corvane::CheckReaders(corvane::FuzzFile("pairs.txt", data, size));
  return 0;
}
