#include "Terrain.h"

#include <cmath>
#include <cstdlib>

namespace corvane {

double TerrainZ(double x, double y) {
  const bool isBlock = (static_cast<int>(x / 40.0) + static_cast<int>(y / 40.0)) % 4 == 0;
  const bool isHouse = isBlock && std::fmod(x, 40.0) > 20.0 && std::fmod(y, 40.0) > 20.0;
  return 10.0 * std::sin(x / 80.0) + 10.0 * std::cos(y / 110.0) + (isHouse ? 8.0 : 0.0);
}

void LoadTerrain(const RandomSurvey& survey, double (*height)(double x, double y), TIN& tin) {
  const std::string path = survey.GetTinPath();
  if (tin.ReadTIN(path) < 0 || tin.StoreTriangle(path) < 0) std::abort();
  for (TINVertex& vertex : tin.vertices) vertex.z = height(vertex.x, vertex.y);
  for (std::int32_t v = 0; v < tin.nPoints; ++v) {
    tin.RecomputeNormals(v);
    tin.NormalizeNormals(v);
  }
  tin.RecalcZExtent();
}

}  // namespace corvane
