#pragma once

#include <string>

#include "ui/FileChooser.h"

namespace corvane {

// The path that a chooser gives for a typed name: the default extension is appended to a name that has none.
// An open chooser takes a file that exists as typed, and otherwise one whose extension differs only in case;
// a save chooser takes a device as typed.
std::string ChosenPath(const FileChooser& chooser, const std::string& typed);

}  // namespace corvane
