#include "ui/RunTimer.h"

#include <algorithm>

#include "ui/FrontEnd.h"

namespace corvane {

namespace {

std::string TwoDigits(long long number) {
  std::string text = std::to_string(number);
  return text.size() < 2 ? "0" + text : text;
}

}  // namespace

RunTimer::RunTimer() : start_(std::chrono::system_clock::now()), end_(start_) {}

void RunTimer::Stop() {
  end_ = std::chrono::system_clock::now();
}

void RunTimer::ShowTotal() const {
  using std::chrono::floor;
  using std::chrono::seconds;
  ShowMessage(TimeSpanText(floor<seconds>(end_) - floor<seconds>(start_)));
}

std::string TimeSpanText(std::chrono::seconds span) {
  const long long total = std::max<long long>(span.count(), 0);  // a clock that was set back shows no time
  return "Total hrs: " + TwoDigits(total / 3600 % 24) + " mins: " + TwoDigits(total / 60 % 60) +
         ", secs: " + TwoDigits(total % 60);
}

}  // namespace corvane
