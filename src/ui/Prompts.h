#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ui/FileChooser.h"
#include "ui/Form.h"

namespace corvane {

enum class MessageKind { Message, Stop, Warning, Information };
enum class MessageButtons { Ok, OkCancel };
enum class SaveChoice { Save, Discard, Cancel };

// The name of a kind in transcripts: "message", "stop", "warning", "information".
const char* MessageKindName(MessageKind kind);

// The modal questions and boxes that a front end shows.
class Prompts {
 public:
  virtual ~Prompts() = default;

  // The chosen paths (one unless `multiple`), or nothing on Cancel.
  virtual std::optional<std::vector<std::string>> ChooseFiles(const FileChooser& chooser) = 0;

  // The one-number form: Enter confirms, Esc cancels. Nothing on Cancel.
  virtual std::optional<double> AskValue(const std::string& title, double shown) = 0;

  // Shows the form with its values and takes over what was entered. Every value has been checked on OK.
  // False on Cancel, with the form as it was.
  virtual bool AskForm(Form& form) = 0;

  // Shows a modal box; false only if it has a Cancel button and that was chosen.
  virtual bool ShowMessage(MessageKind kind, MessageButtons buttons, const std::string& text) = 0;

  // Whether to save a changed document that is about to close.
  virtual SaveChoice AskSaveChanges(const std::string& documentTitle) = 0;
};

}  // namespace corvane
