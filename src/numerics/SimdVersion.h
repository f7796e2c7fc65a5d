#pragma once

#include <cstddef>
#include <cstring>
#include <span>
#include <utility>

namespace corvane {

// Hot loops are compiled several times, and the version that fits the machine is chosen while the program
// runs. With contraction to fused multiply-add off and sums in their order, all versions give the same bits.
//
// A loop is written once, as a kernel: a struct whose Run is a template over the width of a register in
// bytes, always inlined, so that it is compiled anew for each version:
//
//   struct AddRows {
//     template <std::size_t width>
//     [[gnu::always_inline]] static inline void Run(double* to, const double* from, std::size_t n) {
//       std::size_t i = 0;
//       SimdPack<double, width> sum, term;
//       for (; i + sum.kLanes <= n; i += sum.kLanes) {
//         sum.Load(to + i);
//         term.Load(from + i);
//         sum.lanes += term.lanes;
//         sum.Store(to + i);
//       }
//       for (; i < n; ++i) to[i] += from[i];
//     }
//   };
//   RunSimd<AddRows>(to, from, n);
//
// The choice costs about a nanosecond, so a kernel takes a row or more. Functions that a kernel calls must be
// always inlined too, or they run in the baseline version; packs are handed on by reference.
enum class SimdVersion { Baseline, Avx2, Avx512 };

// The versions that this machine can run, the plainest first.
std::span<const SimdVersion> AvailableSimdVersions();

// The version that RunSimd takes: the best available one, unless one is forced.
SimdVersion GetSimdVersion();

// Makes RunSimd take this version, which must be available, for the lifetime of the object. For tests and
// benchmarks.
class ForcedSimdVersion {
 public:
  explicit ForcedSimdVersion(SimdVersion version);
  ~ForcedSimdVersion();
  ForcedSimdVersion(const ForcedSimdVersion&) = delete;
  ForcedSimdVersion& operator=(const ForcedSimdVersion&) = delete;

 private:
  SimdVersion previous_;
};

// A register of `width` bytes holding numbers of type T. `lanes` takes the usual operators lane by lane; a
// comparison gives a pack of all-one and all-zero integers, which "?:" takes.
template <typename T, std::size_t width>
struct SimdPack {
  static constexpr std::size_t kLanes = width / sizeof(T);
  typedef T Lanes __attribute__((vector_size(width)));

  Lanes lanes;

  [[gnu::always_inline]] void Load(const T* from) { std::memcpy(&lanes, from, width); }
  [[gnu::always_inline]] void Store(T* to) const { std::memcpy(to, &lanes, width); }
  [[gnu::always_inline]] void Fill(T value) { Spread(value, std::make_index_sequence<kLanes>()); }

 private:
  // A shuffle copies the bits, and is two instructions for a value that is known only while the program runs.
  template <std::size_t... lane>
  [[gnu::always_inline]] void Spread(T value, std::index_sequence<lane...>) {
    Lanes first{};
    first[0] = value;
    lanes = __builtin_shufflevector(first, first, static_cast<int>(0 * lane)...);
  }
};

namespace simd {

template <typename Kernel, typename... Args>
auto RunBaseline(Args... args) {
  return Kernel::template Run<16>(args...);
}

#if defined(__x86_64__)
template <typename Kernel, typename... Args>
[[gnu::target("avx2")]] auto RunAvx2(Args... args) {
  return Kernel::template Run<32>(args...);
}

template <typename Kernel, typename... Args>
[[gnu::target("avx2,avx512f,avx512bw,avx512dq,avx512vl")]] auto RunAvx512(Args... args) {
  return Kernel::template Run<64>(args...);
}
#endif

}  // namespace simd

// Runs the kernel in the version to take, and returns what it returns.
template <typename Kernel, typename... Args>
auto RunSimd(Args... args) {
#if defined(__x86_64__)
  switch (GetSimdVersion()) {
    case SimdVersion::Avx512:
      return simd::RunAvx512<Kernel>(args...);
    case SimdVersion::Avx2:
      return simd::RunAvx2<Kernel>(args...);
    case SimdVersion::Baseline:
      break;
  }
#endif
  return simd::RunBaseline<Kernel>(args...);
}

}  // namespace corvane
