#include "commands/PointsOutput.h"

#include "io/Paths.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// Writes the vertices with these marks beside the document.
bool WritePointsBeside(CCorvaneView& view, const char* suffix, int mode) {
  const std::string path = BesideDocument(view, suffix);
  const std::int32_t written = view.GetDocument().GetTIN().WritePoints(path, mode);
  if (written == -2) ShowWarning(WriteErrorText(path));
  return written >= 0;
}

}  // namespace

std::string BesideDocument(CCorvaneView& view, const char* suffix) {
  return DerivedName(view.GetDocument().GetPathName(), suffix);
}

bool WriteSplitPoints(CCorvaneView& view, const std::string& kind, const char* groundSuffix,
                      const char* restSuffix) {
  TIN& tin = view.GetDocument().GetTIN();
  tin.MarkGroupMembers();
  Ui().SetStatusText(0, kind + ": " + std::to_string(tin.groups.size()) + ".");
  const bool ground = WritePointsBeside(view, groundSuffix, 1);
  const bool rest = WritePointsBeside(view, restSuffix, 2);
  return ground && rest;
}

}  // namespace corvane
