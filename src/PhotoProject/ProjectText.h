#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "io/TextScanner.h"

namespace corvane {

// What the readers of a project's text files share.

// "%lf %lf ...": false at the first field that is no number, which leaves the rest as they were.
bool ScanReals(TextScanner& text, std::initializer_list<double*> numbers);

// Tells in the message pane where a reader has stopped in a file with this content.
void TellWhereStopped(const std::string& path, std::string_view content, const TextScanner& text);

}  // namespace corvane
