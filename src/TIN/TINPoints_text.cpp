// Texts in: point lists to points files and to points, and masks.

#include <algorithm>
#include <array>
#include <new>
#include <optional>

#include "TIN/PointsHeader.h"
#include "TIN/TINPoints.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "io/RecordReader.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// How a text's records are scanned: the scanf formats "%lf,%lf,%lf", " %lf" in place of ",%lf", a fourth
// number, and "%d, \t%lf, \t%lf, \t%lf, \t%lf\n" with an id, its end being the next record's start.
struct RecordFormat {
  bool hasId = false;
  bool hasCommas = true;
  int nNumbers = 3;
};

struct TextRecord {
  bool hasField = false;
  int nNumbers = 0;                    // that were read
  std::array<double, 4> numbers = {};  // x, y, z, value

  bool IsPoint() const { return nNumbers >= 3; }
};

// A record that begins with an id and has any number of fields.
struct ValueRecord {
  bool hasField = false;
  int nNumbers = 0;  // that were read, the id not counted
  PointRecord point;

  bool IsPoint() const { return nNumbers >= 2; }
};

// The extents of a converted text. Kept: a coordinate that raises the maximum is not tested against the
// minimum.
struct TextExtent {
  double minX = 0.0;
  double maxX = 0.0;
  double minY = 0.0;
  double maxY = 0.0;

  static void Follow(double value, double& min, double& max) {
    if (value > max) {
      max = value;
    } else if (value < min) {
      min = value;
    }
  }

  void Add(double x, double y) {
    Follow(x, minX, maxX);
    Follow(y, minY, maxY);
  }
};

constexpr RecordFormat kIdFormat{.hasId = true, .hasCommas = true, .nNumbers = 4};
constexpr double kFarAway = 1.7e+308;

RecordFormat FormatOf(std::string_view firstLine) {
  RecordFormat format;
  const int nFields = CountFields(firstLine);
  if (nFields >= 4) format.nNumbers = 4;
  if (nFields <= 1) return format;
  format.hasCommas = HasCommas(firstLine);
  return format;
}

// An id, and a number for each further field of the line.
RecordFormat ValueFormatOf(std::string_view firstLine) {
  const int nFields = CountFields(firstLine);
  RecordFormat format{.hasId = true, .hasCommas = true, .nNumbers = std::max(nFields - 1, 0)};
  if (nFields <= 1) return format;
  TextScanner scanner(firstLine);
  std::int32_t id = 0;
  double number = 0.0;
  format.hasCommas = scanner.ScanInt(id) && scanner.MatchLiteral(',') && scanner.ScanDouble(number);
  return format;
}

bool ScanSeparator(TextScanner& scanner, const RecordFormat& format) {
  if (format.hasCommas && !scanner.MatchLiteral(',')) return false;
  if (!format.hasCommas || format.hasId) scanner.SkipSpace();
  return true;
}

TextRecord ScanRecord(TextScanner& scanner, const RecordFormat& format) {
  TextRecord record;
  if (format.hasId) {
    std::int32_t id = 0;
    if (!scanner.ScanInt(id)) return record;
    record.hasField = true;
  }
  for (int i = 0; i < format.nNumbers; ++i) {
    if ((i > 0 || format.hasId) && !ScanSeparator(scanner, format)) return record;
    if (!scanner.ScanDouble(record.numbers[static_cast<std::size_t>(i)])) return record;
    record.hasField = true;
    ++record.nNumbers;
  }
  return record;
}

ValueRecord ScanValueRecord(TextScanner& scanner, const RecordFormat& format) {
  ValueRecord record;
  PointRecord& point = record.point;
  record.hasField = scanner.ScanInt(point.id);
  if (!record.hasField) return record;
  std::array<double, 3> first = {};  // x, y, and what is z in a record of four numbers
  double last = 0.0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(format.nNumbers); ++i) {
    if (!ScanSeparator(scanner, format) || !scanner.ScanDouble(last)) break;
    if (i < first.size()) first[i] = last;
    ++record.nNumbers;
  }
  point.x = first[0];
  point.y = first[1];
  if (record.nNumbers == 4) point.z = first[2];
  if (record.nNumbers >= 3) point.value = last;
  return record;
}

// What has become of a text.
struct Conversion {
  TextExtent extent;
  std::int32_t nPoints = 0;
  std::int64_t nShortRecords = 0;  // left out, with too few fields
  std::int64_t stopLine = 0;       // of something that is no number; 0: none
};

// Tells how much of a long text has been read.
class Progress {
 public:
  explicit Progress(const std::string& path) : path_(path) {}

  void Follow(std::int64_t position) {
    if (position < next_) return;
    const std::int64_t nSteps = position / kStep;
    Ui().SetStatusText(0, "Read " + std::to_string(64 * nSteps) + " MB of " + path_);
    next_ = (nSteps + 1) * kStep;
  }

 private:
  static constexpr std::int64_t kStep = 64000000;  // bytes
  const std::string& path_;
  std::int64_t next_ = kStep;
};

// Writes a record of three numbers or more as a point; false if the file does not take it. `value` is the
// last one read.
bool AppendPoint(TextRecord record, double& value, bool hasStart, OutputFile& out, Conversion& done) {
  if (done.nPoints == INT32_MAX) return false;
  if (record.nNumbers == 4) value = record.numbers[3];
  record.numbers[3] = value;
  const auto [x, y, z, ignored] = record.numbers;
  if (done.nPoints++ == 0 && !hasStart) done.extent = {x, x, y, y};
  done.extent.Add(x, y);
  return out.Write(record.numbers.data(), kPointBytes);
}

// Scans records until the text ends, or something is no number, and hands those that are points to
// take(record), which returns false if it can't take any more. False then, and if the text can't be read to
// its end.
template <typename Scan, typename Take>
bool TakePoints(RecordReader& reader, const RecordFormat& format, const std::string& txtPath,
                Conversion& done, Scan scan, Take take) {
  Progress progress(txtPath);
  std::int64_t shortEnd = -1;  // where the last record with too few fields ends
  while (!reader.AtEnd()) {
    const std::int64_t start = reader.GetPosition();
    const auto record = reader.Next([&](TextScanner& scanner) { return scan(scanner, format); });
    const std::int64_t end = reader.GetPosition();
    if (reader.HasFailed()) return false;
    progress.Follow(end);
    if (format.hasId ? !record.hasField : end == start) {
      if (!reader.AtEnd()) done.stopLine = reader.GetLine();
      if (end == shortEnd) --done.nShortRecords;  // it was this which cut the record short
      break;
    }
    if (record.IsPoint()) {
      if (!take(record)) return false;
    } else if (record.hasField) {
      ++done.nShortRecords;
      shortEnd = end;
    }
  }
  return true;
}

// Copies the records to `out`, from byte 52 on. Nothing if the text can't be read to its end, or the points
// file not be written.
std::optional<Conversion> ConvertRecords(RecordReader& reader, const RecordFormat& format, OutputFile& out,
                                         const std::string& txtPath) {
  Conversion done;
  // Kept: without records these stay in the header.
  if (format.hasId) done.extent = {kFarAway, -kFarAway, kFarAway, -kFarAway};
  double value = 1.0;
  out.Seek(PointsHeader::kBytes);
  const auto append = [&](const TextRecord& record) {
    return AppendPoint(record, value, format.hasId, out, done);
  };
  if (!TakePoints(reader, format, txtPath, done, ScanRecord, append)) return std::nullopt;
  return done;
}

// A line to be shown: printable ASCII, other bytes as "?", of a length that a status bar holds.
std::string Shown(std::string_view line) {
  constexpr std::size_t kMaxLength = 60;
  std::string text(line.substr(0, kMaxLength));
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
  return line.size() > kMaxLength ? text + "..." : text;
}

// Whether the line's first field begins with a number and is no whole one, as an id is.
bool BeginsWithFraction(std::string_view line) {
  constexpr std::string_view kSeparators = " ,\t\r\n";
  const std::size_t begin = line.find_first_not_of(kSeparators);
  if (begin == std::string_view::npos) return false;
  const std::size_t end = line.find_first_of(kSeparators, begin);
  const std::string_view field = line.substr(begin, end - begin);
  std::int32_t id = 0;
  TextScanner whole(field);
  if (whole.ScanInt(id) && whole.GetPosition() == field.size()) return false;
  double number = 0.0;
  return TextScanner(field).ScanDouble(number);
}

// How many points there are, "written" or "read", what was left out and why.
std::string ReportOf(const Conversion& done, const RecordFormat& format, const std::string& firstLine,
                     const std::string& txtPath, const char* verb) {
  std::string text = std::string("Points ") + verb + ": " + std::to_string(done.nPoints) + ".";
  if (done.nShortRecords == 1) text += " 1 record with too few fields was left out.";
  if (done.nShortRecords > 1) {
    text += " " + std::to_string(done.nShortRecords) + " records with too few fields were left out.";
  }
  const int nFields = CountFields(firstLine);
  const int nRead = format.nNumbers + (format.hasId ? 1 : 0);
  if (done.nPoints > 0 && nFields > nRead) {
    text += " Lines have " + std::to_string(nFields) + " fields, of which " + std::to_string(nRead) +
            " are read: are these points?";
  }
  if (format.hasId && BeginsWithFraction(firstLine)) {
    text += " The first field of line 1 is no whole number; records are id, x, y, z, value.";
  }
  if (done.nPoints == 0 && done.stopLine == 1) {
    text += " Line 1 of " + txtPath + " is no point: " + Shown(firstLine);
  } else if (done.stopLine > 0) {
    text += " Stopped at line " + std::to_string(done.stopLine) + " of " + txtPath + ": not a number.";
  }
  return text;
}

// `fixedFormat` null: the text's first line decides.
int ConvertText(const std::string& txtPath, const std::string& binPath, double spacing,
                const RecordFormat* fixedFormat) {
  if (txtPath.empty() || binPath.empty()) return -1;
  InputFile in(txtPath);
  if (!in.IsOpen()) return -1;
  OutputFile out(binPath);
  if (!out.IsOpen()) return -1;

  RecordReader reader(in);
  const std::string firstLine(FirstLine(reader.GetText()));
  const RecordFormat format = fixedFormat ? *fixedFormat : FormatOf(firstLine);
  Ui().Print("x, y, z\n");
  const auto done = ConvertRecords(reader, format, out, txtPath);
  if (!done) return -1;
  const TextExtent& extent = done->extent;
  const PointsHeader header = {done->nPoints, extent.minX, extent.maxY, extent.maxX,
                               extent.minY,   spacing,     spacing};
  const auto bytes = header.Pack();
  out.Seek(0);
  out.Write(bytes.data(), bytes.size());
  if (!out.Commit()) return -1;
  Ui().SetStatusText(0, ReportOf(*done, format, firstLine, txtPath, "written"));
  return 0;
}

bool IsUsable(const Region& region) {
  if (region.type == Region::kRectangle) return region.nVertices >= 2;
  return region.type == Region::kPolygon && region.nVertices > 0;
}

// The next region of a mask; nothing if the text does not hold the whole of it.
std::optional<Region> ScanRegion(TextScanner& scanner) {
  Region region;
  if (!scanner.ScanInt(region.type) || !scanner.ScanInt(region.nVertices)) return std::nullopt;
  for (std::int64_t i = 0; i < 2 * std::int64_t{region.nVertices}; ++i) {
    double coordinate = 0.0;
    if (!scanner.ScanDouble(coordinate)) return std::nullopt;
    region.coords.push_back(coordinate);
  }
  return region;
}

}  // namespace

int TINPoints::TextToBinary(const std::string& txtPath, const std::string& binPath, double spacing) {
  return ConvertText(txtPath, binPath, spacing, nullptr);
}

int TINPoints::TextIdToBinary(const std::string& txtPath, const std::string& binPath, double spacing) {
  return ConvertText(txtPath, binPath, spacing, &kIdFormat);
}

int TINPoints::ReadText(const std::string& path) {
  points = {};
  nPoints = capacity = nMissing_ = 0;
  index.Free();
  InputFile file(path);
  if (!file.IsOpen()) return -1;

  RecordReader reader(file);
  const std::string firstLine(FirstLine(reader.GetText()));
  const RecordFormat format = ValueFormatOf(firstLine);
  Conversion done;
  std::vector<PointRecord> records;
  const auto append = [&](const ValueRecord& record) {
    if (done.nPoints == INT32_MAX) return false;
    ++done.nPoints;
    records.push_back(record.point);
    return true;
  };
  try {
    if (!TakePoints(reader, format, path, done, ScanValueRecord, append)) return -1;
  } catch (const std::bad_alloc&) {
    return -1;
  }
  points = std::move(records);
  nPoints = capacity = done.nPoints;
  Ui().SetStatusText(0, ReportOf(done, format, firstLine, path, "read"));
  return 1;
}

int TINPoints::ReadRegions(const std::string& path, std::vector<Region>& regions) {
  regions.clear();
  const auto text = ReadWholeFile(path);
  if (!text) return -1;
  TextScanner scanner(*text);
  std::int32_t nRegions = 0;
  scanner.SkipSpace();
  if (!scanner.AtEnd() && !scanner.ScanInt(nRegions)) {
    Ui().SetStatusText(0, "The mask begins with no number of regions.");
  }
  std::int32_t nRead = 0;
  for (; nRead < nRegions; ++nRead) {
    auto region = ScanRegion(scanner);
    if (!region) break;
    if (IsUsable(*region)) regions.push_back(std::move(*region));
  }
  if (nRead < nRegions) {
    Ui().SetStatusText(0, "Regions read: " + std::to_string(nRead) + " of " + std::to_string(nRegions) + ".");
  }
  return 1;
}

}  // namespace corvane
