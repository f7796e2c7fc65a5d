#include "commands/FrameMenu.h"

#include "commands/Failures.h"
#include "dib/DibIo.h"
#include "dib/Stereogram.h"
#include "io/Paths.h"
#include "shell/CorvaneApp.h"
#include "shell/DibDoc.h"
#include "shell/DibView.h"
#include "shell/MainFrm.h"

namespace corvane {

namespace {

const FileChooser kOpenDepths{.filter =
                                  "Bitmap Files (*.bmp)|*.bmp|Image File Type (*.dib)|*.DIB|"
                                  "\t\t\t\t\t\tAll Files (*.*)|*.*|",
                              .defaultExtension = ".BMP"};

}  // namespace

CommandResult OnBareEarth(CMainFrame&) {
  return CommandResult::Done;
}

CommandResult OnStereoGram(CMainFrame& frame) {
  const auto path = ChooseFile(kOpenDepths);
  if (!path) return CommandResult::Cancelled;
  CDibDoc* depths = OpenBitmapFile(frame, *path);
  if (!depths) return CommandResult::Failed;

  WaitCursor wait;
  Dib picture = MakeStereogramCanvas(depths->GetDib());
  if (picture.empty()) return FailWithWarning(ErdasImg::kNoMemoryText);
  // Bitmaps of 1 bit would take dots of 2 colours; they have no bytes to take depths from.
  if (MakeStereogram(depths->GetDib(), picture) < 0) {
    return FailWithWarning("A depth image has 8 or 24 bits a pixel; this one has " +
                           std::to_string(DibBitCount(picture)) + ".");
  }
  const std::string outPath = FileTitle(*path) + "_SRD.bmp";
  const bool isWritten = WriteDib(picture, outPath) == 1;
  OpenBitmapWindow(frame, std::move(picture), outPath).SetZoom(0, 1.0);
  if (!isWritten) return CommandResult::Failed;
  Ui().SetStatusText(0,
                     "Written to " + outPath + ". Look through the picture, as at something far behind it.");
  return CommandResult::Done;
}

}  // namespace corvane
