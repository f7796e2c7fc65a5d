#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "ui/FileChooser.h"

namespace corvane {

enum class FieldType {
  Text,
  Integer,    // 32-bit
  Real,       // double
  Float,      // single precision, held as the double it widens to
  Selection,  // positions in `items`, from 0, any number of them
};

struct FieldLimits {
  double min = 0.0;
  double max = 0.0;
};

using FieldValue = std::variant<std::string, std::int64_t, double, std::vector<int>>;

// One field of a form: what the window shows, what the command line reads and what the transcript writes
// are all made from it.
struct FormField {
  std::string name;       // the field's name in the code
  std::string label;      // as shown, "" for none
  std::string hint = {};  // shown behind the edit box, "" for none
  FieldType type = FieldType::Real;
  FieldValue value = 0.0;                  // string, int64, double, double, vector<int> by type
  std::optional<FieldLimits> limits = {};  // both ends allowed
  std::optional<FileChooser> browse = {};  // a Browse button that fills the field
  std::vector<std::string> items = {};     // of a Selection
};

// Fields of each type; limits, hint and the rest are set on what comes back.
FormField RealField(const std::string& name, const std::string& label, double value,
                    std::optional<FieldLimits> limits = std::nullopt);
FormField FloatField(const std::string& name, const std::string& label, float value);
FormField IntegerField(const std::string& name, const std::string& label, std::int64_t value,
                       std::optional<FieldLimits> limits = std::nullopt);
FormField FileField(const std::string& name, const std::string& label, const std::string& value,
                    const FileChooser& browse);

// A modal form: fields in the order in which they are shown and checked.
struct Form {
  std::string name;   // "ParamInput"
  std::string title;  // "Input Slope Filter Parameters"
  std::vector<FormField> fields;

  FormField* Find(const std::string& fieldName);

  double GetReal(const std::string& fieldName) const;  // Real and Float
  std::int64_t GetInteger(const std::string& fieldName) const;
  const std::string& GetText(const std::string& fieldName) const;
  const std::vector<int>& GetSelection(const std::string& fieldName) const;
};

}  // namespace corvane
