#pragma once

#include <cstdint>

namespace corvane {

// Scrambles 64 bits so that each bit of the result depends on all of them (the output step of SplitMix64).
inline std::uint64_t Mix(std::uint64_t bits) {
  bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9u;
  bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBu;
  return bits ^ (bits >> 31);
}

// A random sequence that is the same on every machine and compiler. Each thing that needs random numbers (a
// pulse, a parcel, a check point) has a sequence of its own, told by numbers, so that it does not depend on
// what was made before it.
class Random {
 public:
  // What a sequence is for.
  enum Purpose : std::uint64_t {
    kPulse = 1,
    kStrip,
    kParcel,
    kParcelBlock,
    kCheckPoint,
    kField,
    kRoof,
    kCrown,
    kLeaves,
    kSensor,
    kSoil,
    kSignal,
    kStart,
  };

  Random(std::uint64_t seed, Purpose purpose, std::int64_t i, std::int64_t j = 0)
      : state_(Mix(seed + purpose * kStep)) {
    state_ = Mix(state_ + static_cast<std::uint64_t>(i) * kStep);
    state_ = Mix(state_ + static_cast<std::uint64_t>(j) * kStep);
  }

  std::uint64_t Next() { return Mix(state_ += kStep); }

  // From 0 to below 1.
  double Uniform() { return static_cast<double>(Next() >> 11) * 0x1p-53; }

  // From `low` to `high`, both possible.
  std::int64_t Between(std::int64_t low, std::int64_t high) {
    return low + static_cast<std::int64_t>(Next() % static_cast<std::uint64_t>(high - low + 1));
  }

  // Mean 0, standard deviation 1, never beyond kNormalLimit: the sum of four uniform numbers.
  double Normal() {
    const std::uint64_t bits = Next();
    const std::uint64_t sum = (bits & 0xFFFF) + (bits >> 16 & 0xFFFF) + (bits >> 32 & 0xFFFF) + (bits >> 48);
    return (static_cast<double>(sum) - kMeanSum) / kSumDeviation;
  }
  static constexpr double kNormalLimit = 3.4642;

 private:
  static constexpr std::uint64_t kStep = 0x9E3779B97F4A7C15u;
  static constexpr double kMeanSum = 2.0 * 65535.0;
  static constexpr double kSumDeviation = 37837.0;  // 65536 * sqrt(4 / 12)

  std::uint64_t state_;
};

}  // namespace corvane
