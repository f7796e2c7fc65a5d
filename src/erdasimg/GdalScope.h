#pragma once

#include <cstdint>

namespace corvane {

// While one lives, GDAL tells its errors to the debug stream alone and keeps little memory of its own.
class GdalScope {
 public:
  GdalScope();
  ~GdalScope();
  GdalScope(const GdalScope&) = delete;
  GdalScope& operator=(const GdalScope&) = delete;

 private:
  std::int64_t cacheBytes_;  // as set before
};

}  // namespace corvane
