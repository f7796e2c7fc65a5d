#pragma once

#include <string>

#include "shell/CorvaneView.h"

namespace corvane {

// The name of an output beside the document: its path cut at the last ".", plus the suffix.
std::string BesideDocument(CCorvaneView& view, const char* suffix);

// Marks the vertices that belong to groups as no ground (id -1), and writes ground and the rest apart, beside
// the document. Tells in status pane 0 how many groups there are, calling them `kind`. False, with a warning,
// if a file can't be written.
bool WriteSplitPoints(CCorvaneView& view, const std::string& kind, const char* groundSuffix,
                      const char* restSuffix);

}  // namespace corvane
