#include "shell/LogWnd.h"

#include "ui/FrontEnd.h"

namespace corvane {

void LogWnd::Open() {
  open_ = true;
  Ui().OpenLog(*this);
}

void LogWnd::Close() {
  if (open_) Ui().CloseLog(*this);
  open_ = false;
}

void LogWnd::Append(const std::string& text) {
  text_ += text;
  if (open_) Ui().AppendToLog(*this, text);
}

}  // namespace corvane
