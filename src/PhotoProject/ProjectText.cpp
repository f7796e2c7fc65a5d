#include "PhotoProject/ProjectText.h"

#include <algorithm>

#include "ui/FrontEnd.h"

namespace corvane {

bool ScanReals(TextScanner& text, std::initializer_list<double*> numbers) {
  return std::all_of(numbers.begin(), numbers.end(),
                     [&](double* const number) { return text.ScanDouble(*number); });
}

void TellNoMemory(const std::string& path) {
  Ui().SetStatusText(0, "There is no memory for the file " + path + ".");
}

bool ScanFiducial(TextScanner& text, Fiducials& fiducials) {
  std::int32_t number = 0;
  Point2 place;
  if (!text.ScanInt(number) || !ScanReals(text, {&place.x, &place.y})) return false;
  if (number >= 0 && number < AerialPhoto::kFiducials) fiducials[static_cast<std::size_t>(number)] = place;
  return true;
}

void TellWhereStopped(const std::string& path, std::string_view content, const TextScanner& text) {
  const std::string_view before = content.substr(0, text.GetPosition());
  const auto line = std::to_string(1 + std::count(before.begin(), before.end(), '\n'));
  const bool isShort = before.size() == content.size();
  Ui().SetStatusText(0, isShort ? "The file " + path + " ends too early, on line " + line + "."
                                : "Line " + line + " of " + path + " can't be read.");
}

}  // namespace corvane
