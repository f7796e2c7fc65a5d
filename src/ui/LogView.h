#pragma once

#include <string>

#include "ui/WindowView.h"

namespace corvane {

// The size in which a log window opens.
constexpr PixelSize kLogWindowSize{640, 420};

// The toolkit-free side of a modeless window that shows one read-only text.
class LogView {
 public:
  virtual ~LogView() = default;

  virtual std::string GetTitle() const = 0;
  virtual const std::string& GetText() const = 0;
};

}  // namespace corvane
