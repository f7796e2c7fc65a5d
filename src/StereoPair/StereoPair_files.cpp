// Texts and points files of matching.

#include <algorithm>
#include <array>
#include <exception>
#include <string_view>

#include "StereoPair/PairFile.h"
#include "StereoPair/StereoPair.h"
#include "io/InputFile.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "io/Paths.h"
#include "io/TextScanner.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::size_t kItemsOfPair = 5;  // id, left row, left column, right row, right column

// How the lines of a pair file are scanned: "%d" and, for each further column, ",%lf" or " %lf".
struct PairFormat {
  bool hasCommas = true;
  std::size_t nColumns = 0;
};

struct PairLine {
  std::size_t nItems = 0;  // that were read
  MatchPair pair;
};

PairFormat FormatOf(std::string_view firstLine) {
  PairFormat format;
  format.nColumns = static_cast<std::size_t>(CountFields(firstLine));
  if (format.nColumns <= 1) return format;
  format.hasCommas = HasCommas(firstLine);
  return format;
}

PairLine ScanPair(std::string_view line, const PairFormat& format) {
  PairLine scanned;
  TextScanner scanner(line);
  if (!scanner.ScanInt(scanned.pair.id)) return scanned;
  scanned.nItems = 1;
  std::array<double, 5> numbers = {0.0, 0.0, 0.0, 0.0, -1.0};
  for (std::size_t i = 0; i < numbers.size() && i + 1 < format.nColumns; ++i) {
    if (format.hasCommas && !scanner.MatchLiteral(',')) break;
    if (!scanner.ScanDouble(numbers[i])) break;
    ++scanned.nItems;
  }
  const auto [leftRow, leftCol, rightRow, rightCol, score] = numbers;
  scanned.pair.left = {leftCol, leftRow};
  scanned.pair.right = {rightCol, rightRow};
  scanned.pair.score = score;
  return scanned;
}

// The next line, without its end and cut at a zero; it is taken off the text.
std::string_view TakeLine(std::string_view& text) {
  const std::string_view line = FirstLine(text, text.size() + 1);
  text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
  return line;
}

bool IsBlank(std::string_view text) {
  return Trimmed(text).empty();
}

// With `stopsAtNothing` only up to a line without a single number.
std::vector<MatchPair> ScanPairs(std::string_view text, bool stopsAtNothing, PairLines& lines) {
  std::vector<MatchPair> pairs;
  const PairFormat format = FormatOf(FirstLine(text));
  lines.nColumns = static_cast<std::int64_t>(format.nColumns);
  for (std::int64_t number = 1; !text.empty(); ++number) {
    const std::string_view rest = text;
    const std::string_view line = TakeLine(text);
    const PairLine scanned = ScanPair(line, format);
    if (scanned.nItems == 0 && stopsAtNothing) {
      if (!IsBlank(rest)) lines.stopLine = number;
      lines.stopIsEmpty = IsBlank(line);
      break;
    }
    if (scanned.nItems >= kItemsOfPair) {
      pairs.push_back(scanned.pair);
    } else if (!IsBlank(line)) {
      ++lines.nLeftOut;
    }
  }
  return pairs;
}

// The points of the left or the right image.
int MakePoints(std::span<const MatchPair> pairs, Point2 MatchPair::*side, TINPoints& points) {
  points = TINPoints();
  for (const MatchPair& pair : pairs) {
    const Point2& place = pair.*side;
    if (points.AddPoint({points.nPoints, place.x, place.y, 0.0, pair.score}) < 0) return -1;
  }
  return 1;
}

// Hands every `step`-th position below n from `start` on to write(i), until that returns false.
template <typename Write>
bool WriteEach(std::int64_t n, std::int64_t start, std::int64_t step, Write write) {
  for (std::int64_t i = std::max<std::int64_t>(start, 0); i < n; i += step) {
    if (!write(static_cast<std::size_t>(i))) return false;
    if (step < 1 || step > n - i) break;
  }
  return true;
}

void AppendPair(std::string& text, const MatchPair& pair) {
  AppendInt(text, pair.id);
  for (const double number : {pair.left.y, pair.left.x, pair.right.y, pair.right.x, pair.score}) {
    text += ", ";
    AppendFixed(text, number);
  }
  text += '\n';
}

void AppendGroundPoint(std::string& text, const PointRecord& point) {
  constexpr int kDigits = 15;
  char separator = '\0';
  for (const double number : {point.x, point.y, point.z, point.value}) {
    if (separator != '\0') text += separator;
    separator = ' ';
    AppendGeneral(text, number, kDigits);
  }
  text += '\n';
}

int FailToWrite(const std::string& path) {
  ShowWarning(WriteErrorText(path));
  return -1;
}

}  // namespace

int StereoPair::ReadPairs(const std::string& path, std::vector<MatchPair>& pairs) {
  try {
    const auto text = ReadWholeFile(path);
    if (!text) return -1;
    PairLines unread;
    pairs = ScanPairs(*text, false, unread);
  } catch (const std::exception&) {  // of an allocation, or of a text that is too long for one
    return -1;
  }
  return 1;
}

int StereoPair::ReadPairsAsPoints(const std::string& path, TINPoints& left, TINPoints& right,
                                  PairLines* lines) {
  try {
    const auto text = ReadWholeFile(path);
    if (!text) return -1;
    PairLines found;
    const std::vector<MatchPair> pairs = ScanPairs(*text, true, found);
    if (lines) *lines = found;
    if (MakePoints(pairs, &MatchPair::left, left) < 0) return -1;
    return MakePoints(pairs, &MatchPair::right, right);
  } catch (const std::exception&) {
    return -1;
  }
}

int StereoPair::WritePairs(const std::string& path, std::span<const MatchPair> pairs, std::int64_t start,
                           std::int64_t step) {
  OutputFile file(path);
  if (!file.IsOpen()) return -1;
  std::string line;
  const auto write = [&](std::size_t i) {
    line.clear();
    AppendPair(line, pairs[i]);
    return file.Write(line);
  };
  return WriteEach(std::ssize(pairs), start, step, write) && file.Commit() ? 1 : -1;
}

int StereoPair::StorePairs(const std::string& path, std::span<const MatchPair> pairs) {
  return WritePairs(path, pairs, 0, 1) < 0 ? FailToWrite(path) : 1;
}

int StereoPair::WriteGroundLog(const std::string& path, std::int64_t step) const {
  OutputFile file(path);
  if (!file.IsOpen()) return FailToWrite(path);
  std::string line;
  const auto write = [&](std::size_t i) {
    line.clear();
    AppendGroundPoint(line, groundPoints->points[i]);
    return file.Write(line);
  };
  const std::int64_t n = groundPoints ? groundPoints->nPoints : 0;
  return WriteEach(n, 0, step, write) && file.Commit() ? 1 : FailToWrite(path);
}

int StereoPair::SaveGroundPoints(const std::string& path) {
  if (!groundPoints || groundPoints->nPoints < 1 || path.empty()) return 0;
  groundPoints->SortByPlace();
  groundPoints->RecalcExtent();
  return groundPoints->Write(path) < 0 ? FailToWrite(path) : 1;
}

std::string StereoPair::GetLeftName(const std::string& suffix) const {
  return DerivedName(leftImagePath, suffix);
}

std::string StereoPair::FindInputAmong(const std::vector<std::string>& paths) const {
  const std::vector<std::string> inputs = {leftImagePath, rightImagePath, leftOrientationPath,
                                           rightOrientationPath, demPath};
  const auto isInput = [&inputs](const std::string& path) { return IsOneOfFiles(path, inputs); };
  const auto found = std::find_if(paths.begin(), paths.end(), isInput);
  return found == paths.end() ? "" : *found;
}

}  // namespace corvane
