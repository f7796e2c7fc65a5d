#include "PhotoProject/PhotoProject.h"

namespace corvane {

AerialPhoto* PhotoProject::GetPhoto(int strip, int photo) const {
  if (strip < 0 || static_cast<std::size_t>(strip) >= photos.size()) return nullptr;
  const auto& row = photos[static_cast<std::size_t>(strip)];
  if (photo < 0 || static_cast<std::size_t>(photo) >= row.size()) return nullptr;
  return row[static_cast<std::size_t>(photo)].get();
}

}  // namespace corvane
