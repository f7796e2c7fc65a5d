#include "forms/ModelSelect.h"

#include "ui/FrontEnd.h"

namespace corvane {

bool ModelSelect::Ask() {
  Form form;
  form.name = "ModelSelect";
  form.title = "Select Model(s) to Match";
  form.fields = {
      {.name = "models", .label = "", .type = FieldType::Selection, .value = models, .items = items}};
  if (!Ui().AskForm(form)) return false;
  models = form.GetSelection("models");
  return true;
}

}  // namespace corvane
