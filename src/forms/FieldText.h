#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ui/Form.h"

namespace corvane {

// The text that an edit box shows for the field's value; a selection as "0,2".
std::string FieldText(const FormField& field);

// Takes the field's value over from a text. On refusal the field stays as it is and the form's own words
// come back: "Please enter a number between 0 and 90."
std::optional<std::string> SetFieldFromText(FormField& field, std::string_view text);

}  // namespace corvane
