#include "support/SharedData.h"

#include <cstdlib>
#include <filesystem>

namespace corvane {

std::string SharedData(const std::string& name) {
  namespace fs = std::filesystem;
  const char* folder = std::getenv("CORVANE_TEST_DATA");
  const fs::path root =
      folder ? fs::path(folder) : fs::path(CORVANE_SOURCE_DIR).parent_path() / "shared/data";
  const fs::path path = root / name;
  return fs::exists(path) ? path.string() : "";
}

}  // namespace corvane
