#include "OpenGL/Stereo_2Cursor/3DCoordInput.h"

#include "ui/FrontEnd.h"

namespace corvane {

bool C3DCoordInput::Ask() {
  Form form;
  form.name = "3DCoordInput";
  form.title = "Please Input XYZ";
  form.fields = {RealField("x", "X:", x), RealField("y", "Y:", y), RealField("z", "Z:", z)};
  if (!Ui().AskForm(form)) return false;
  x = form.GetReal("x");
  y = form.GetReal("y");
  z = form.GetReal("z");
  return true;
}

}  // namespace corvane
