// Image files of 500 MB, and an ASCII grid of 4,000,000 cells, each beside its yardstick in the same run:
//   "speed of cp": that of reading or writing a .lan over that of cp with the same file (wanted: 0.4 or more
//     for one band, 0.25 for three); cp leaves the bytes to the system, a .lan is durable when it is written.
//     For a subset, all but a border of one pixel, reading, cutting and writing count together (wanted: 0.25)
//   "speed of memcpy": that of cutting alone over that of copying the whole band in memory
//   "speed of durable cp": the same over cp with a sync of the copy
//   "of gdal_translate": the time to read or write a GeoTIFF over that of gdal_translate, from GeoTIFF to
//     GeoTIFF and from .lan to GeoTIFF (wanted: 1.2 or less)
//   "times streams": how many times faster than formatted streams, same text (wanted: 4 or more for writing,
//     3 for reading)
//   "MB beyond pixels": the peak of memory that reading adds, without the pixels (wanted: 64 or less); "MB of
//     pixels" beside it where these are not the 500

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <vector>

#include "PeakMemory.h"
#include "RandomSurvey.h"
#include "TakingTurns.h"
#include "erdasimg/AsciiGrid.h"
#include "erdasimg/ErdasImg.h"
#include "io/OutputFile.h"

namespace corvane {
namespace {

constexpr std::int32_t kImageCols = 12500;
constexpr std::int32_t kImageRows = 40000;  // bytes of one band: 500 MB
constexpr std::int32_t kGridSide = 2000;
constexpr int kRuns = 3;

const RandomSurvey& Folder() {
  static const RandomSurvey folder(0);
  return folder;
}

bool RunProgram(const std::string& line) {
  return std::system(line.c_str()) == 0;
}

// An image of 500 MB, its bytes random.
void MakeImage(ErdasImg& image, std::uint16_t nBands) {
  ErdasHeader header;
  header.bandCount = nBands;
  header.cols = kImageCols;
  header.rows = kImageRows / nBands;
  if (image.Create(header, false) != 1) std::abort();
  std::mt19937_64 random(1);
  for (std::int64_t band = 0; band < nBands; ++band) {
    const auto bytes = image.GetBands().GetBand(band);
    for (std::size_t i = 0; i + 8 <= bytes.size(); i += 8) {
      const std::uint64_t number = random();
      std::copy_n(reinterpret_cast<const std::uint8_t*>(&number), 8, &bytes[i]);
    }
  }
}

// The path of such an image as a file; made at the first call.
std::string ImagePath(std::uint16_t nBands, const std::string& extension) {
  const std::string path = Folder().PathOf("image" + std::to_string(nBands) + extension);
  if (std::filesystem::exists(path)) return path;
  ErdasImg image;
  MakeImage(image, nBands);
  if (image.Write(path) != 1) std::abort();
  return path;
}

// Both begin without a target and without other work on the way to the disk.
class FreshTarget {
 public:
  explicit FreshTarget(const std::string& name) : path_(Folder().PathOf(name)) {}
  ~FreshTarget() { std::filesystem::remove(path_); }

  const std::string& GetPath() const { return path_; }

  void Prepare() const {
    std::filesystem::remove(path_);
    sync();
  }

 private:
  std::string path_;
};

double SecondsOfProgram(const FreshTarget& target, const std::string& line) {
  target.Prepare();
  return SecondsOf([&] {
    if (!RunProgram(line)) std::abort();
  });
}

// Times reading an image beside a program that copies it, and counts the memory beyond the pixels.
Seconds MeasureRead(benchmark::State& state, const std::string& path, const FreshTarget& target,
                    const std::string& program) {
  Seconds total;
  double beyond = 0.0;
  for (auto step : state) {
    total.yardstick += SecondsOfProgram(target, program);
    target.Prepare();
    ResetPeak();
    const double before = PeakBytes();
    ErdasImg image;
    const double seconds = SecondsOf([&] {
      if (image.Read(path) != 1) std::abort();
    });
    beyond = PeakBytes() - before - 5e8;
    state.SetIterationTime(seconds);
    total.ours += seconds;
  }
  state.counters["MB beyond pixels"] = beyond / 1e6;
  return total;
}

void ReadLan(benchmark::State& state) {
  const std::string path = ImagePath(static_cast<std::uint16_t>(state.range(0)), ".lan");
  const FreshTarget target("copy.lan");
  const Seconds total = MeasureRead(state, path, target, "cp " + path + " " + target.GetPath());
  state.counters["speed of cp"] = total.yardstick / total.ours;
}
BENCHMARK(ReadLan)->Arg(1)->Arg(3)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);

void WriteLan(benchmark::State& state) {
  const auto nBands = static_cast<std::uint16_t>(state.range(0));
  const std::string path = ImagePath(nBands, ".lan");
  const FreshTarget target("copy.lan");
  const std::string copy = "cp " + path + " " + target.GetPath();
  ErdasImg image;
  MakeImage(image, nBands);
  Seconds total;
  double durable = 0.0;
  for (auto step : state) {
    total.yardstick += SecondsOfProgram(target, copy);
    durable += SecondsOfProgram(target, copy + " && sync " + target.GetPath());
    target.Prepare();
    const double seconds = SecondsOf([&] {
      if (image.Write(target.GetPath()) != 1) std::abort();
    });
    state.SetIterationTime(seconds);
    total.ours += seconds;
  }
  state.counters["speed of cp"] = total.yardstick / total.ours;
  state.counters["speed of durable cp"] = durable / total.ours;
}
BENCHMARK(WriteLan)->Arg(1)->Arg(3)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);

void SubsetLan(benchmark::State& state) {
  const std::string path = ImagePath(1, ".lan");
  const FreshTarget target("copy.lan");
  Seconds total;
  for (auto step : state) {
    total.yardstick += SecondsOfProgram(target, "cp " + path + " " + target.GetPath());
    target.Prepare();
    ErdasImg image;
    ErdasImg window;
    const double seconds = SecondsOf([&] {
      if (image.Read(path) != 1) std::abort();
      image.ExtractTo(1, kImageCols - 2, 1, kImageRows - 2, true, window);
      if (window.Write(target.GetPath()) != 1) std::abort();
    });
    state.SetIterationTime(seconds);
    total.ours += seconds;
  }
  state.counters["speed of cp"] = total.yardstick / total.ours;
}
BENCHMARK(SubsetLan)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);

// Both into memory that is in use already.
void CutSubset(benchmark::State& state) {
  ErdasImg image;
  MakeImage(image, 1);
  const auto pixels = image.GetBands().GetBand(0);
  std::vector<std::uint8_t> copy(pixels.begin(), pixels.end());
  const auto cut = [&] { return bool(image.GetSubset(1, kImageCols - 2, 1, kImageRows - 2)); };
  if (!cut()) std::abort();
  const Seconds total = Compare(state, cut, [&] {
    std::memcpy(copy.data(), pixels.data(), pixels.size());
    benchmark::DoNotOptimize(copy.data());
    benchmark::ClobberMemory();
    return true;
  });
  state.counters["speed of memcpy"] = total.yardstick / total.ours;
}
BENCHMARK(CutSubset)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);

void ReadGeoTiff(benchmark::State& state) {
  const std::string path = ImagePath(static_cast<std::uint16_t>(state.range(0)), ".tif");
  const FreshTarget target("copy.tif");
  const std::string translate = "gdal_translate -q " + path + " " + target.GetPath();
  const Seconds total = MeasureRead(state, path, target, translate);
  state.counters["of gdal_translate"] = total.ours / total.yardstick;
}
BENCHMARK(ReadGeoTiff)->Arg(1)->Arg(3)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);

// Reading the .lan counts, as gdal_translate reads it too.
void WriteGeoTiff(benchmark::State& state) {
  const std::string path = ImagePath(static_cast<std::uint16_t>(state.range(0)), ".lan");
  const FreshTarget target("copy.tif");
  const std::string translate = "gdal_translate -q " + path + " " + target.GetPath();
  Seconds total;
  for (auto step : state) {
    total.yardstick += SecondsOfProgram(target, translate);
    target.Prepare();
    ErdasImg image;
    const double seconds = SecondsOf([&] {
      if (image.Read(path) != 1) std::abort();
      if (image.Write(target.GetPath()) != 1) std::abort();
    });
    state.SetIterationTime(seconds);
    total.ours += seconds;
  }
  state.counters["of gdal_translate"] = total.ours / total.yardstick;
}
BENCHMARK(WriteGeoTiff)->Arg(1)->Arg(3)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);

// Heights as a survey has them, no two alike.
std::vector<double> GridCells() {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> height(-100.0, 4000.0);
  std::vector<double> cells(std::size_t{kGridSide} * kGridSide);
  for (double& cell : cells) cell = height(random);
  return cells;
}

const AsciiGridHeader kGridHeader = {kGridSide, kGridSide, 1000.5, 2000.5, 0.5, -4096.0};

bool WriteGrid(const std::string& path, const std::vector<double>& cells) {
  OutputFile file(path);
  bool good = file.IsOpen() && WriteAsciiGridHeader(file, kGridHeader);
  const std::span<const double> all(cells);
  for (std::size_t row = 0; row < kGridSide; ++row) {
    good = good && WriteAsciiGridRow(file, all.subspan(row * kGridSide, kGridSide));
  }
  return good && file.Commit();
}

bool WriteGridPlainly(const std::string& path, const std::vector<double>& cells) {
  std::ofstream file(path);
  file.precision(10);
  file << "ncols " << kGridHeader.nCols << "\nnrows " << kGridHeader.nRows << "\nxllcorner "
       << kGridHeader.xllCorner << "\nyllcorner " << kGridHeader.yllCorner << "\ncellsize "
       << kGridHeader.cellSize << "\nNODATA_value " << kGridHeader.noData << '\n';
  for (std::size_t i = 0; i < cells.size(); ++i) file << cells[i] << ((i + 1) % kGridSide == 0 ? '\n' : ' ');
  return file.flush().good();
}

bool ReadGridPlainly(const std::string& path, std::vector<double>& cells) {
  std::ifstream file(path);
  std::string label;
  double number = 0.0;
  for (int line = 0; line < 6; ++line) file >> label >> number;
  for (double& cell : cells) file >> cell;
  return file.good();
}

void WriteAsciiGrid(benchmark::State& state) {
  const std::vector<double> cells = GridCells();
  const std::string path = Folder().PathOf("ours.asc");
  const std::string plainPath = Folder().PathOf("plain.asc");
  const Seconds total = Compare(
      state, [&] { return WriteGrid(path, cells); }, [&] { return WriteGridPlainly(plainPath, cells); });
  state.counters["times streams"] = total.yardstick / total.ours;
  if (!RunProgram("cmp -s " + path + " " + plainPath)) state.SkipWithError("the texts differ");
}
BENCHMARK(WriteAsciiGrid)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);

void ReadAsciiGrid(benchmark::State& state) {
  const std::string path = Folder().PathOf("read.asc");
  std::vector<double> cells = GridCells();
  if (!WriteGrid(path, cells)) std::abort();
  ErdasImg image;
  const Seconds total = Compare(
      state, [&] { return image.ReadAsciiGrid(path) == 1; }, [&] { return ReadGridPlainly(path, cells); });
  state.counters["times streams"] = total.yardstick / total.ours;
  const auto read = image.GetBands().GetBand(0);
  if (!std::ranges::equal(std::as_bytes(std::span(cells)), std::as_bytes(read))) {
    state.SkipWithError("the cells differ");
  }
}
BENCHMARK(ReadAsciiGrid)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(kRuns);

void MemoryOfAsciiGrid(benchmark::State& state) {
  const std::string path = Folder().PathOf("read.asc");
  if (!WriteGrid(path, GridCells())) std::abort();
  constexpr double kPixelBytes = 1.0 * kGridSide * kGridSide * sizeof(double);
  double beyond = 0.0;
  for (auto step : state) {
    ResetPeak();
    const double before = PeakBytes();
    ErdasImg image;
    if (image.ReadAsciiGrid(path) != 1) std::abort();
    beyond = PeakBytes() - before - kPixelBytes;
  }
  state.counters["MB of pixels"] = kPixelBytes / 1e6;
  state.counters["MB beyond pixels"] = beyond / 1e6;
}
BENCHMARK(MemoryOfAsciiGrid)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
