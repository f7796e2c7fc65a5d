#include "erdasimg/GdalScope.h"

#include <cpl_error.h>
#include <gdal.h>

#include <string>

#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::int64_t kCacheBytes = std::int64_t{16} << 20;

void TraceError(CPLErr /*kind*/, CPLErrorNum /*number*/, const char* text) {
  Ui().Trace("GDAL: " + std::string(text) + "\n");
}

}  // namespace

GdalScope::GdalScope() : cacheBytes_(GDALGetCacheMax64()) {
  CPLPushErrorHandler(TraceError);
  GDALSetCacheMax64(kCacheBytes);
}

GdalScope::~GdalScope() {
  GDALSetCacheMax64(cacheBytes_);
  CPLPopErrorHandler();
}

}  // namespace corvane
