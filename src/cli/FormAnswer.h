#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ui/Form.h"

namespace corvane {

// A form's values as one text: "maxSlope=30;minElevation=1". A value in double quotes keeps its semicolons
// and outer blanks, and within quotes \" and \\ stand for " and \.

// Puts the named values into the form, the others stay as shown, and checks all of them as the form's OK
// does. Nothing if they were taken over; otherwise the words of the refusal, and the form is as it was.
std::optional<std::string> ApplyFormAnswer(Form& form, std::string_view answer);

// The answer that gives a form all of its present values again, exactly.
std::string FormAnswer(const Form& form);

}  // namespace corvane
