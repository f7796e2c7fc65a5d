#include "numerics/SimdVersion.h"

#include <cstddef>

namespace corvane {

namespace {

constexpr SimdVersion kVersions[] = {SimdVersion::Baseline, SimdVersion::Avx2, SimdVersion::Avx512};

SimdVersion BestVersion() {
#if defined(__x86_64__)
  __builtin_cpu_init();
  if (!__builtin_cpu_supports("avx2")) return SimdVersion::Baseline;
  const bool hasAvx512 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                         __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
  return hasAvx512 ? SimdVersion::Avx512 : SimdVersion::Avx2;
#else
  return SimdVersion::Baseline;
#endif
}

SimdVersion best = BestVersion();
SimdVersion used = best;

}  // namespace

std::span<const SimdVersion> AvailableSimdVersions() {
  return std::span(kVersions).first(static_cast<std::size_t>(best) + 1);
}

SimdVersion GetSimdVersion() {
  return used;
}

ForcedSimdVersion::ForcedSimdVersion(SimdVersion version) : previous_(used) {
  used = version;
}

ForcedSimdVersion::~ForcedSimdVersion() {
  used = previous_;
}

}  // namespace corvane
