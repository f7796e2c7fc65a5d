#include "cli/FormAnswer.h"

#include <algorithm>

#include "cli/ScriptFile.h"
#include "forms/FieldText.h"
#include "io/NumberText.h"

namespace corvane {

namespace {

// "ParamInput has no field "slope", only maxSlope, minElevation."
std::string UnknownFieldText(const Form& form, const std::string& name) {
  std::string text = form.name + " has no field \"" + name + "\", only ";
  for (std::size_t i = 0; i < form.fields.size(); ++i) text += (i ? ", " : "") + form.fields[i].name;
  return text + ".";
}

// Takes one "field=value" off the answer, from `position` to behind its semicolon.
std::optional<std::string> ApplyPair(Form& form, std::string_view answer, std::size_t& position) {
  const std::size_t equals = answer.find_first_of("=;", position);
  const std::string name(Trimmed(answer.substr(position, equals - position)));
  if (equals == answer.npos || answer[equals] == ';') {
    position = equals == answer.npos ? answer.size() : equals + 1;
    if (name.empty()) return std::nullopt;
    return "\"" + name + "\" is no field=value.";
  }
  FormField* field = form.Find(name);
  if (!field) return UnknownFieldText(form, name);

  position = std::min(answer.find_first_not_of(" \t", equals + 1), answer.size());
  std::string value;
  if (position < answer.size() && answer[position] == '"' && !ReadQuoted(answer, position, value)) {
    return "The value of " + name + " has a quote that is not closed.";
  }
  const std::size_t end = std::min(answer.find(';', position), answer.size());
  value += Trimmed(answer.substr(position, end - position));
  position = std::min(end + 1, answer.size());
  const auto refusal = SetFieldFromText(*field, value);
  if (refusal) return name + ": " + *refusal;
  return std::nullopt;
}

// What the form says to a value that is shown but could not be entered.
std::optional<std::string> CheckShown(const Form& form) {
  for (FormField field : form.fields) {
    if (field.type == FieldType::Text || field.type == FieldType::Selection) continue;
    const auto refusal = SetFieldFromText(field, FieldText(field));
    if (refusal) return field.name + ": " + *refusal;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> ApplyFormAnswer(Form& form, std::string_view answer) {
  Form entered = form;
  for (std::size_t position = 0; position < answer.size();) {
    if (auto refusal = ApplyPair(entered, answer, position)) return refusal;
  }
  if (auto refusal = CheckShown(entered)) return refusal;
  form = entered;
  return std::nullopt;
}

std::string FormAnswer(const Form& form) {
  std::string answer;
  for (const FormField& field : form.fields) {
    const std::string value = FieldText(field);
    const bool plain = value.find_first_of(";\"") == value.npos && Trimmed(value) == value;
    if (!answer.empty()) answer += ';';
    answer += field.name + '=' + (plain ? value : Quoted(value));
  }
  return answer;
}

}  // namespace corvane
