#include "commands/TinMenu.h"

#include "TIN/TINPoints.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/PointsInput.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "shell/CommandShapes.h"

namespace corvane {

namespace {

const FileChooser kSaveTin{.mode = FileChooser::Mode::Save,
                           .filter = "TIN Files (*.tin)|*.tin|All Files (*.*)|*.*|",
                           .defaultExtension = "tin"};

constexpr const char* kCannotTriangulate =
    "The points can not be triangulated: fewer than three distinct points, all on one line, or coordinates "
    "that are not numbers.\n";

constexpr const char* kNoMemory = "There is not enough memory to triangulate the points.\n";

std::string TooManyText(const TINPoints& points) {
  return "There are " + std::to_string(points.GetCount()) + " points; no more than " +
         std::to_string(TINPoints::kMaxTriangulated) + " can be triangulated.\n";
}

}  // namespace

CommandResult OnCreateTin(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenPoints, kSaveTin});
  if (!paths) return CommandResult::Cancelled;
  WaitCursor wait;
  InputFile pointsFile((*paths)[0]);
  if (!pointsFile.IsOpen()) return FailWith("Open points file error!\n");
  TINPoints points;
  const int read = points.Read(pointsFile);
  pointsFile.Close();
  if (read == -4) return FailWith(kNoMemory);
  TellMissing(points);

  // The library ends the process, crashes or never returns on points that have no triangles.
  Triangulation triangles;
  const int triangulated = read < 0 ? -1 : points.Triangulate(nullptr, nullptr, triangles);
  if (triangulated == -2) return FailWith(kNoMemory);
  if (triangulated == -3) return FailWith(TooManyText(points));
  if (triangulated < 0) return FailWith(kCannotTriangulate);
  OutputFile tinFile((*paths)[1]);
  if (!tinFile.IsOpen()) return FailWith("Open TIN file error!\n");
  const bool written = points.WriteTriangles(tinFile, triangles) >= 0 && tinFile.Commit();
  TINPoints::FreeTriangulation(triangles);
  if (!written) return FailWith(WriteErrorText((*paths)[1]));
  return CommandResult::Done;
}

}  // namespace corvane
