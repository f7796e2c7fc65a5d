#include "shell/LogWnd.h"

#include "ui/FrontEnd.h"

namespace corvane {

void LogWnd::Open() {
  if (open_) return;
  text_.clear();
  open_ = true;
  Ui().OpenLog(*this);
}

void LogWnd::Close() {
  if (open_) Ui().CloseLog(*this);
  open_ = false;
}

void LogWnd::Append(const std::string& text) {
  if (!open_) return;
  text_ += text;
  Ui().AppendToLog(*this, text);
}

}  // namespace corvane
