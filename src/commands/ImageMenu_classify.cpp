// The commands of the menu Image around grey levels: histogram and classes; and the trial of the wavelets.

#include <array>
#include <vector>

#include "Classification/Classification.h"
#include "Wavelet/Wavelet.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/ImageFiles.h"
#include "commands/ImageMenu.h"
#include "io/Paths.h"

namespace corvane {

namespace {

std::string ClassesText(const Classification& isodata) {
  const std::string text = " Classes: " + std::to_string(isodata.m_classCount);
  const int nEmpty = isodata.CountEmptyClasses();
  if (nEmpty > 0)
    return text + ", of which " + std::to_string(nEmpty) + (nEmpty > 1 ? " are" : " is") + " empty.";
  if (isodata.m_classCount > 0) return text + ".";
  return text + ". No grey level is a peak of more than " + std::to_string(isodata.m_minPeak) + " pixels.";
}

}  // namespace

CommandResult OnImageHistogram(CCorvaneView&) {
  const auto path = ChooseFile(kOpenAImage);
  if (!path) return CommandResult::Cancelled;
  WaitCursor wait;
  ErdasImg image;
  const bool isRead = ReadImage(*path, image);
  Classification classification(&image);
  classification.ComputeHistogram();
  Ui().Trace("\n");
  classification.DumpHistogram([](const std::string& line) { Ui().Trace(line); });
  return ResultOf(isRead);
}

CommandResult OnIsodata(CCorvaneView&) {
  const auto path = ChooseFile(kOpenAImage);
  if (!path) return CommandResult::Cancelled;
  WaitCursor wait;
  ErdasImg image;
  const bool isRead = ReadImage(*path, image);
  if (!image.HasPixels()) return CommandResult::Failed;
  Classification isodata(&image);
  if (isodata.Classify() < 0) return FailWithWarning(ErdasImg::kNoMemoryText);
  // Kept: in the current folder, wherever the image is.
  return StoreImage(FileTitle(*path) + "_cls.lan", isodata.GetClassImage(), isRead,
                    ClassesText(isodata) + CutText(image) + AsBytesText(image.GetPackType()));
}

CommandResult OnWaveletTransform(CCorvaneView&) {
  constexpr std::array kSignal = {1.0, 1.0, 1.0, 1.0};
  constexpr int kLevels = 1;
  Wavelet wavelet;
  std::vector<double> coefficients;
  std::vector<double> signal;
  std::vector<std::int32_t> lengths;
  const bool good = wavelet.SetFilter("db2") > 0 && wavelet.Decompose(kSignal, coefficients) > 0 &&
                    wavelet.Reconstruct(coefficients, signal) > 0 &&
                    wavelet.DecomposeLevels(kSignal, coefficients, lengths, kLevels) > 0 &&
                    wavelet.ReconstructLevels(coefficients, lengths, signal, kLevels) > 0;
  return good ? CommandResult::Done : CommandResult::Failed;
}

}  // namespace corvane
