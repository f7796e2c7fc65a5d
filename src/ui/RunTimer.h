#pragma once

#include <chrono>
#include <string>

namespace corvane {

// The time of a long run, from construction to Stop(), in whole seconds of the clock.
class RunTimer {
 public:
  RunTimer();
  void Stop();

  // Shows "Total hrs: %H mins: %M, secs: %S" in a plain box.
  void ShowTotal() const;

 private:
  std::chrono::system_clock::time_point start_;
  std::chrono::system_clock::time_point end_;
};

// "Total hrs: 01 mins: 02, secs: 03". Hours run from 00 to 23; whole days do not show.
std::string TimeSpanText(std::chrono::seconds span);

}  // namespace corvane
