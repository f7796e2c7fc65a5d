#include "StereoPair/DenseMaps.h"

#include <algorithm>

#include "StereoPair/GridMatching.h"
#include "erdasimg/ImageFiles.h"
#include "numerics/Truncate.h"

namespace corvane {

DensePlaces::DensePlaces(std::int32_t length, std::int32_t window, double spacing)
    : first(std::int64_t{window} / 2 + 1),
      end(spacing > 0.0 && window > 0 ? std::int64_t{length} - window / 2 - 1 : 0),
      step(std::max<std::int64_t>(TruncateTo64(spacing), 1)) {}

std::unique_ptr<ErdasImg> MakeMap(const ErdasImg& image, std::uint16_t packType) {
  ErdasHeader header;
  image.CopyHeader(header);
  header.packType = packType;
  header.bandCount = 1;
  auto map = std::make_unique<ErdasImg>();
  if (map->Create(header, false) < 0) return nullptr;
  return map;
}

void WriteMap(const std::string& path, ErdasImg& map, ResultFiles& files) {
  files.Add(path, WriteImage(path, map) ? 1 : -1);
}

}  // namespace corvane
