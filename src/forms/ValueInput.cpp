#include "forms/ValueInput.h"

#include "ui/FrontEnd.h"

namespace corvane {

bool ValueInput::Ask() {
  const auto entered = Ui().AskValue(title, value);
  if (entered) value = *entered;
  return entered.has_value();
}

}  // namespace corvane
