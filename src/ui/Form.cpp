#include "ui/Form.h"

#include <algorithm>
#include <stdexcept>

namespace corvane {

FormField RealField(const std::string& name, const std::string& label, double value,
                    std::optional<FieldLimits> limits) {
  return {.name = name, .label = label, .type = FieldType::Real, .value = value, .limits = limits};
}

FormField FloatField(const std::string& name, const std::string& label, float value) {
  return {.name = name, .label = label, .type = FieldType::Float, .value = static_cast<double>(value)};
}

FormField IntegerField(const std::string& name, const std::string& label, std::int64_t value,
                       std::optional<FieldLimits> limits) {
  return {.name = name, .label = label, .type = FieldType::Integer, .value = value, .limits = limits};
}

FormField FileField(const std::string& name, const std::string& label, const std::string& value,
                    const FileChooser& browse) {
  return {.name = name, .label = label, .type = FieldType::Text, .value = value, .browse = browse};
}

FormField* Form::Find(const std::string& fieldName) {
  const auto found = std::find_if(fields.begin(), fields.end(),
                                  [&](const FormField& field) { return field.name == fieldName; });
  return found == fields.end() ? nullptr : &*found;
}

namespace {

template <typename T>
const T& ValueOf(const Form& form, const std::string& fieldName) {
  FormField* field = const_cast<Form&>(form).Find(fieldName);
  if (!field) throw std::logic_error(form.name + " has no field " + fieldName);
  return std::get<T>(field->value);
}

}  // namespace

double Form::GetReal(const std::string& fieldName) const {
  return ValueOf<double>(*this, fieldName);
}

std::int64_t Form::GetInteger(const std::string& fieldName) const {
  return ValueOf<std::int64_t>(*this, fieldName);
}

const std::string& Form::GetText(const std::string& fieldName) const {
  return ValueOf<std::string>(*this, fieldName);
}

const std::vector<int>& Form::GetSelection(const std::string& fieldName) const {
  return ValueOf<std::vector<int>>(*this, fieldName);
}

}  // namespace corvane
