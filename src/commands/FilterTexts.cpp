#include "commands/FilterTexts.h"

#include "ImgProcess/ImgProcess.h"
#include "commands/ImageFiles.h"
#include "io/NumberText.h"

namespace corvane {

bool CheckSigma(double sigma) {
  if (ImgProcess::HasGaussian(sigma)) return true;
  ShowWarning("The sigma is no number from 0 to " + ShortestText(ImgProcess::kMaxSigma) +
              ". Please enter the smoothing in pixels.");
  return false;
}

std::string FilterNotes(const ErdasImg& image) {
  const char* const note = " Pixels of this type are not filtered: all are zero.";
  return CutText(image) + (IsByteOrReal(image.GetPackType()) ? "" : note);
}

std::string FilterNotes(const ErdasImg& image, double sigma) {
  const bool areNumbers = sigma != 0.0 || !IsByteOrReal(image.GetPackType());
  return FilterNotes(image) + (areNumbers ? "" : " Sigma 0 makes every pixel not a number.");
}

}  // namespace corvane
