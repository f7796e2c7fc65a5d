// Texts in: point lists to points files, and masks.

#include <array>
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
// number, and "%d, \t%lf, \t%lf, \t%lf, \t%lf\n" with an id.
struct RecordFormat {
  bool hasId = false;
  bool hasCommas = true;
  int nNumbers = 3;
};

struct TextRecord {
  bool hasField = false;
  int nNumbers = 0;                    // that were read
  std::array<double, 4> numbers = {};  // x, y, z, value
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
  TextScanner scanner(firstLine);
  double number = 0.0;
  format.hasCommas = scanner.ScanDouble(number) && scanner.MatchLiteral(',') && scanner.ScanDouble(number);
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
  if (format.hasId) scanner.SkipSpace();
  return record;
}

// Copies the records to `out`, from byte 52 on, and returns the header that belongs to them; nothing if a
// points file can't hold so many.
std::optional<PointsHeader> ConvertRecords(RecordReader& reader, const RecordFormat& format, OutputFile& out,
                                           const std::string& txtPath) {
  TextExtent extent;
  if (format.hasId) extent = {kFarAway, -kFarAway, kFarAway, -kFarAway};
  std::int32_t nPoints = 0;
  double value = 1.0;
  bool makesWay = true;
  out.Seek(PointsHeader::kBytes);
  while (makesWay && !reader.AtEnd()) {
    const std::int64_t start = reader.GetPosition();
    TextRecord record = reader.Next([&format](TextScanner& scanner) { return ScanRecord(scanner, format); });
    makesWay = format.hasId ? record.hasField : reader.GetPosition() != start;
    if (record.nNumbers == 4) value = record.numbers[3];
    if (record.nNumbers < 3) continue;
    if (nPoints == INT32_MAX) return std::nullopt;
    const auto [x, y, z, ignored] = record.numbers;
    if (nPoints++ == 0 && !format.hasId) extent = {x, x, y, y};
    extent.Add(x, y);
    record.numbers[3] = value;
    out.Write(record.numbers.data(), kPointBytes);
  }
  if (!makesWay && !reader.AtEnd()) {
    Ui().SetStatusText(
        0, "Stopped at line " + std::to_string(reader.GetLine()) + " of " + txtPath + ": not a number.");
  }
  return PointsHeader{nPoints, extent.minX, extent.maxY, extent.maxX, extent.minY, 1.0, 1.0};
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
  const RecordFormat format = fixedFormat ? *fixedFormat : FormatOf(FirstLine(reader.GetText()));
  Ui().Print("x, y, z\n");
  auto header = ConvertRecords(reader, format, out, txtPath);
  if (!header) return -1;
  header->spacingX = header->spacingY = spacing;
  const auto bytes = header->Pack();
  out.Seek(0);
  out.Write(bytes.data(), bytes.size());
  if (!out.Commit()) return -1;
  Ui().SetStatusText(0, "Points written: " + std::to_string(header->nPoints));
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

int TINPoints::ReadRegions(const std::string& path, std::vector<Region>& regions) {
  regions.clear();
  const auto text = ReadWholeFile(path);
  if (!text) return -1;
  TextScanner scanner(*text);
  std::int32_t nRegions = 0;
  scanner.ScanInt(nRegions);
  for (std::int32_t i = 0; i < nRegions; ++i) {
    auto region = ScanRegion(scanner);
    if (!region) break;
    if (IsUsable(*region)) regions.push_back(std::move(*region));
  }
  return 1;
}

}  // namespace corvane
