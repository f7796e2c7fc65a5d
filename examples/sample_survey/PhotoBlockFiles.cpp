#include "sample_survey/PhotoBlockFiles.h"

#include "erdasimg/ErdasImg.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "sample_survey/Random.h"

namespace corvane {

namespace {

using Role = SignalPoint::Role;

// Units as a text of their decimals: 1423294 millimetres are "1423.294".
void AppendUnits(std::string& text, std::int64_t units, int decimals) {
  double value = static_cast<double>(units);
  for (int i = 0; i < decimals; ++i) value /= 10.0;
  AppendFixed(text, value, decimals);
}

void AppendAngles(std::string& text, const Exterior& exterior) {
  for (const std::int64_t angle : {exterior.omega, exterior.phi, exterior.kappa}) {
    text += ' ';
    AppendUnits(text, angle, 6);
  }
}

void AppendCentre(std::string& text, const Exterior& exterior) {
  for (const std::int64_t coordinate : {exterior.x, exterior.y, exterior.z}) {
    text += ' ';
    AppendUnits(text, coordinate, 3);
  }
}

void AppendPosition(std::string& text, const SignalPoint& point) {
  AppendUnits(text, point.x, 3);
  text += ' ';
  AppendUnits(text, point.y, 3);
  text += ' ';
  AppendUnits(text, point.z, 3);
}

// The coefficients a, b, c and d, e, g from pixels to millimetres: what stands between them, and between c
// and d.
std::string InteriorText(const char* separator, const char* rowSeparator) {
  const std::string pixel = FixedText(SampleCamera::kPixel, 6);
  const std::string corner = FixedText(SampleCamera::kCorner, 6);
  return pixel + separator + "0.000000" + separator + "-" + corner + rowSeparator + "0.000000" + separator +
         "-" + pixel + separator + corner;
}

std::string OrientationText(const BlockPhoto& photo) {
  std::string text =
      "ORIENTATION " + photo.name + " photo\n" + FixedText(SampleCamera::kFocalLength, 6) + "\n";
  AppendCentre(text, photo.exterior);
  text += '\n';
  AppendAngles(text, photo.exterior);
  text += "\n" + FixedText(SampleCamera::kSize * SampleCamera::kPixel, 6) + " 0.0 0.0\n";
  text += InteriorText(" ", "\n") + "\n0.0 0.0\n";
  const std::string pixel = FixedText(SampleCamera::kPixel, 6);
  return text + pixel + " " + pixel + "\n";
}

// Photo coordinates of the four corners of the frame, with their numbers.
std::string FiducialText() {
  const std::string corner = FixedText(SampleCamera::kCorner, 3);
  return "1 -" + corner + " -" + corner + "\n2 -" + corner + " " + corner + "\n3 " + corner + " " + corner +
         "\n4 " + corner + " -" + corner + "\n";
}

std::string CameraText() {
  return "CAMERA\nsample\nfocal_length " + FixedText(SampleCamera::kFocalLength, 6) +
         "\nfiducials 4\n1 0.0 0.0\n" + FiducialText() + "0 0.0 0.0 0.0 0.0 0.0\n";
}

void AppendGroundPoints(std::string& text, const PhotoBlock& block, Role role) {
  std::string points;
  int nPoints = 0;
  for (const SignalPoint& point : block.GetSignals()) {
    if (point.role != role) continue;
    points += point.name + " 3\n";
    AppendPosition(points, point);
    points += "\n0.001 0.001 0.001\n";
    ++nPoints;
  }
  text += std::to_string(nPoints) + "\n" + points;
}

std::string GroundPointsText(const PhotoBlock& block, bool hasPassPoints) {
  std::string text = "GROUND_POINTS\n";
  AppendGroundPoints(text, block, Role::Control);
  if (hasPassPoints) {
    AppendGroundPoints(text, block, Role::Pass);
  } else {
    text += "0\n";
  }
  return text;
}

// The points that a photo shows, pass and check points first: those are measured alike.
struct Measured {
  std::string lines;
  int nPass = 0;
  int nControl = 0;
};

Measured MeasuredIn(const PhotoBlock& block, const BlockPhoto& photo) {
  const SampleCamera camera(photo.exterior);
  Measured measured;
  for (const bool isControl : {false, true}) {
    for (const SignalPoint& point : block.GetSignals()) {
      const PhotoPlace place = camera.Project(point.GetPlace());
      if ((point.role == Role::Control) != isControl || !PhotoBlock::IsShown(place)) continue;
      measured.lines += point.name + " " + FixedText(place.col, 6) + " " + FixedText(place.row, 6) + "\n";
      ++(isControl ? measured.nControl : measured.nPass);
    }
  }
  return measured;
}

// What an aeroplane's own instruments might tell: the truth with errors of some hundredths of a degree and up
// to a metre and a half.
Exterior StartOf(const Exterior& truth, std::uint64_t seed, std::int64_t photo) {
  constexpr std::int64_t kAngle = 50000;  // millionths of a degree
  constexpr std::int64_t kLength = 1500;  // millimetres
  Random random(seed, Random::kStart, photo);
  Exterior start = truth;
  for (std::int64_t* const angle : {&start.omega, &start.phi, &start.kappa})
    *angle += random.Between(-kAngle, kAngle);
  for (std::int64_t* const coordinate : {&start.x, &start.y, &start.z}) {
    *coordinate += random.Between(-kLength, kLength);
  }
  return start;
}

// A project with these orientations, a photo each. Photos' names begin with `prefix`.
std::string ProjectText(const PhotoBlock& block, const std::vector<Exterior>& exteriors,
                        const std::string& prefix) {
  std::string text = "PROJECT\nsample_block\ncamera.txt\n" + FixedText(SampleCamera::kFocalLength, 6) +
                     " 0.0 0.0 0.0 0.0\n" + std::to_string(PhotoBlock::kStrips) + "\n";
  for (int strip = 1; strip <= PhotoBlock::kStrips; ++strip) {
    text += std::to_string(PhotoBlock::kPhotos) + " strip" + std::to_string(strip) + "\n";
  }
  const std::vector<BlockPhoto>& photos = block.GetPhotos();
  for (const BlockPhoto& photo : photos) text += prefix + photo.name + ".lan " + photo.name + "\n";
  const auto placeOf = [](std::size_t i) {
    return std::to_string(i / PhotoBlock::kPhotos + 1) + " " + std::to_string(i % PhotoBlock::kPhotos + 1);
  };
  for (std::size_t i = 0; i < photos.size(); ++i) {
    const Measured measured = MeasuredIn(block, photos[i]);
    text += "4 " + placeOf(i) + " interior\n" + FiducialText() + InteriorText("\n", "\n") + "\n" +
            std::to_string(measured.nPass) + " " + std::to_string(measured.nControl) + "\n" + measured.lines;
  }
  for (std::size_t i = 0; i < photos.size(); ++i) {
    text += "0 " + placeOf(i) + " exterior\n0.0 0.0 0.0 0.0 0.0 0.0\n";
    AppendAngles(text, exteriors[i]);
    AppendCentre(text, exteriors[i]);
    text += '\n';
  }
  return text;
}

std::string SignalsText(const PhotoBlock& block) {
  constexpr const char* kRoles[] = {"control", "pass", "check"};
  std::string text;
  for (const SignalPoint& point : block.GetSignals()) {
    text += point.name + " ";
    AppendPosition(text, point);
    text += std::string(" ") + kRoles[static_cast<int>(point.role)] + "\n";
  }
  return text;
}

std::string SignalPlacesText(const PhotoBlock& block) {
  std::string text;
  for (const SignalPoint& point : block.GetSignals()) {
    for (const BlockPhoto& photo : block.GetPhotos()) {
      const PhotoPlace place = SampleCamera(photo.exterior).Project(point.GetPlace());
      if (!PhotoBlock::IsShown(place)) continue;
      text += point.name + " " + photo.name + " " + FixedText(place.col, 6) + " " + FixedText(place.row, 6) +
              "\n";
    }
  }
  return text;
}

bool WritePhoto(const PhotoBlock& block, std::size_t photo, const std::filesystem::path& path) {
  const std::vector<std::uint8_t> pixels = block.Expose(photo);
  ErdasHeader header;
  header.cols = SampleCamera::kSize;
  header.rows = SampleCamera::kSize;
  ErdasImg image;
  if (image.Create(header, true) != 1) return false;
  for (std::int32_t row = 0; row < header.rows; ++row) {
    for (std::int32_t col = 0; col < header.cols; ++col) {
      image.SetPixel(0, row, col, pixels[static_cast<std::size_t>(row * header.cols + col)]);
    }
  }
  return image.Write(path.string()) == 1;
}

bool WriteGround(const GroundRaster& ground, const std::filesystem::path& path) {
  ErdasHeader header;
  header.packType = kPackFloat;
  header.cols = GroundRaster::kCols;
  header.rows = GroundRaster::kRows;
  header.xMap = static_cast<float>(kSurveyWest + GroundRaster::kEast);
  header.yMap = static_cast<float>(kSurveySouth + GroundRaster::kNorth +
                                   static_cast<double>(GroundRaster::kRows) * GroundRaster::kCellSize);
  header.xCell = static_cast<float>(GroundRaster::kCellSize);
  header.yCell = static_cast<float>(-GroundRaster::kCellSize);
  ErdasImg image;
  if (image.Create(header, true) != 1) return false;
  for (std::int32_t row = 0; row < header.rows; ++row) {
    for (std::int32_t col = 0; col < header.cols; ++col) {
      image.SetPixel(0, row, col, ground.GetCell(GroundRaster::kRows - 1 - row, col));
    }
  }
  return image.Write(path.string()) == 1;
}

constexpr const char* kReadme = R"(SAMPLE BLOCK

Six made aerial photos of the sample survey's ground with exact truth: two strips of three, flown east,
with 60 % overlap in a strip and 64 % between strips. They show the bare ground, as if nothing stood on it,
with a signal (a white disc of 2 on a black one of 4) at each of 50 points. Ground in metres, photos in
millimetres. Focal length 150, pixels of 0.15, 0.5 on the ground; flown about 500 above it.

s1p1.lan ... s2p3.lan  the photos: strip and number, 800 x 800 pixels, grey. A pixel is the mean of four
                       rays that were followed to the ground, with noise of up to 1.5 grey levels.
s1p1.orn ... s2p3.orn  their exact orientation: x = 0.15 col - 59.925, y = -0.15 row + 59.925; whole columns
                       and rows are pixels' centres.
ground.lan             the ground that the rays met, floats: cells of 1, heights at their centres, bilinear
                       between them.
signals.txt            name X Y Z and role of each signal, a line each; on the ground to 0.0005.
signals_image.txt      name, photo, column, row: where they stand in each photo that shows them, exact to
                       0.000001.
block.pj, block.gpt    the block as a project, exact: control points (c..) and pass points (p..) are known,
                       check points (k..) are measured like pass points.
start.pj, start.gpt    the same measurements with an orientation that is off by up to 0.05 degrees and 1.5,
                       and the control points alone: what an adjustment starts from. Its photos are called
                       start_s1p1.lan and so on: importing it leaves the exact orientation files alone.
camera.txt             the camera of both.
)";

}  // namespace

bool WritePhotoBlock(const PhotoBlock& block, const std::filesystem::path& folder, std::string& failed) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  const auto note = [&failed](bool good, const std::filesystem::path& path) {
    if (!good) failed = path.string();
    return good;
  };
  const auto text = [&](const std::string& name, const std::string& content) {
    return note(WriteWholeFile((folder / name).string(), content), folder / name);
  };

  std::vector<Exterior> truth;
  std::vector<Exterior> start;
  for (std::size_t i = 0; i < block.GetPhotos().size(); ++i) {
    const BlockPhoto& photo = block.GetPhotos()[i];
    truth.push_back(photo.exterior);
    start.push_back(StartOf(photo.exterior, block.GetSeed(), static_cast<std::int64_t>(i)));
    const std::filesystem::path path = folder / (photo.name + ".lan");
    if (!note(WritePhoto(block, i, path), path)) return false;
    if (!text(photo.name + ".orn", OrientationText(photo))) return false;
  }
  return note(WriteGround(block.GetGround(), folder / "ground.lan"), folder / "ground.lan") &&
         text("signals.txt", SignalsText(block)) && text("signals_image.txt", SignalPlacesText(block)) &&
         text("camera.txt", CameraText()) && text("block.gpt", GroundPointsText(block, true)) &&
         text("block.pj", ProjectText(block, truth, "")) &&
         text("start.gpt", GroundPointsText(block, false)) &&
         text("start.pj", ProjectText(block, start, "start_")) && text("block_README.txt", kReadme);
}

}  // namespace corvane
