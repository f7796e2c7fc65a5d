#pragma once

#include <functional>
#include <string>
#include <vector>

#include "TIN/TIN.h"
#include "shell/Document.h"

namespace corvane {

class InputFile;
class OutputFile;
class PointComparison;

// The TIN document.
class CCorvaneDoc : public CDocument {
 public:
  using CDocument::CDocument;

  TIN& GetTIN() { return tin; }

  // 1 when the flow has run to its end, -1 if the file does not open. A TIN that does not read has been
  // reported and leaves the document empty.
  int OnOpenDocument(const std::string& path) override;

  bool HasContent() const override { return tin.GetTriangleCount() >= 1; }

  // Writes the .tin and, beside it, all vertices as "_filted.pts". 1 on success; 0 if the .tin, -1 or -2 if
  // the points could not be written, each reported. A file that is there and did not read when it was opened
  // is not overwritten: what it holds may still be rescued by other means.
  int OnSaveDocument(const std::string& path) override;

  // Measure the TIN against the check points of a points file, and write the log beside the document: its
  // path with ".log" in place of the extension. At the end two boxes tell the time that it took, and mean,
  // standard deviation and RMS of the differences, TIN height minus point height; status pane 0 tells how
  // many points were measured, and before that if the points file has been cut short. A failure has been
  // told, Cancel has not, and both leave an old log as it was. The first takes the points in a rectangle that
  // is asked for, in the order of the file; a row holds i, x, y, z and the difference, i being the point's
  // place in the file. 1; -1: no points file; -2: Cancel; -3: no point can be in the rectangle; -4: no
  // memory, or the file can't hold as many points as it announces; -5: the log can't be written, or is one of
  // the files that are compared.
  int CompareWithPoints(const std::string& pointsPath);

  // The second takes the points in the regions of a mask that is asked for, region by region; a row holds x,
  // y and the difference. 1; -1: no points file, points outside the extents in its header, or Cancel; -2: no
  // mask; -3: no point in the regions; -4: no memory; -5: as above.
  int CompareInRegions(const std::string& pointsPath);

  TIN tin;

 private:
  std::string unreadPath_;  // the file that was opened and did not read, "" for none

  int ReadAndStore(InputFile& file);
  bool SaveTin(const std::string& path);
  int SavePoints(const std::string& path);
  void TellComparing(const std::string& pointsPath);
  int RunComparison(PointComparison& comparison, OutputFile& log, const std::vector<std::string>& inputs,
                    const std::function<void()>& measure);
};

}  // namespace corvane
