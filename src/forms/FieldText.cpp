#include "forms/FieldText.h"

#include <algorithm>

#include "io/NumberText.h"

namespace corvane {

namespace {

std::string BetweenLimits(const std::string& what, const FieldLimits& limits) {
  return "Please enter " + what + " between " + ShortestText(limits.min) + " and " +
         ShortestText(limits.max) + ".";
}

bool WithinLimits(const FormField& field, double value) {
  return !field.limits || (value >= field.limits->min && value <= field.limits->max);
}

std::optional<std::string> SetReal(FormField& field, std::string_view text) {
  const auto value = ParseReal(text);
  if (!value) return "Please enter a number.";
  if (!WithinLimits(field, *value)) return BetweenLimits("a number", *field.limits);
  if (field.type == FieldType::Float) {
    const auto narrowed = static_cast<float>(*value);
    if (narrowed - narrowed != 0.0f) return "Please enter a number.";  // beyond single precision
    field.value = static_cast<double>(narrowed);
  } else {
    field.value = *value;
  }
  return std::nullopt;
}

std::optional<std::string> SetInteger(FormField& field, std::string_view text) {
  const auto value = ParseInteger(text);
  if (!value || *value < INT32_MIN || *value > INT32_MAX) return "Please enter an integer.";
  if (!WithinLimits(field, static_cast<double>(*value))) return BetweenLimits("an integer", *field.limits);
  field.value = *value;
  return std::nullopt;
}

// Positions separated by commas, in any order; an empty text chooses none.
std::optional<std::string> SetSelection(FormField& field, std::string_view text) {
  std::vector<int> chosen;
  while (!Trimmed(text).empty()) {
    const std::size_t comma = text.find(',');
    const auto position = ParseInteger(text.substr(0, comma));
    if (!position || *position < 0 || *position >= static_cast<std::int64_t>(field.items.size())) {
      return "Please select from the list.";
    }
    chosen.push_back(static_cast<int>(*position));
    text = comma == std::string_view::npos ? std::string_view() : text.substr(comma + 1);
  }
  std::sort(chosen.begin(), chosen.end());
  chosen.erase(std::unique(chosen.begin(), chosen.end()), chosen.end());
  field.value = std::move(chosen);
  return std::nullopt;
}

std::string SelectionText(const std::vector<int>& chosen) {
  std::string text;
  for (const int position : chosen) {
    if (!text.empty()) text += ',';
    AppendInt(text, position);
  }
  return text;
}

}  // namespace

std::string FieldText(const FormField& field) {
  switch (field.type) {
    case FieldType::Text:
      return std::get<std::string>(field.value);
    case FieldType::Integer:
      return std::to_string(std::get<std::int64_t>(field.value));
    case FieldType::Real:
      return ShortestText(std::get<double>(field.value));
    case FieldType::Float:
      return ShortestText(static_cast<float>(std::get<double>(field.value)));
    case FieldType::Selection:
      return SelectionText(std::get<std::vector<int>>(field.value));
  }
  return "";
}

std::optional<std::string> SetFieldFromText(FormField& field, std::string_view text) {
  switch (field.type) {
    case FieldType::Text:
      field.value = std::string(text);
      return std::nullopt;
    case FieldType::Integer:
      return SetInteger(field, text);
    case FieldType::Real:
    case FieldType::Float:
      return SetReal(field, text);
    case FieldType::Selection:
      return SetSelection(field, text);
  }
  return std::nullopt;
}

}  // namespace corvane
