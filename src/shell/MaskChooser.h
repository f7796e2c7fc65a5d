#pragma once

#include "ui/FileChooser.h"

namespace corvane {

// The chooser for a mask of regions.
inline const FileChooser kOpenMask{.filter = "Mask Files (*.msk)|*.msk|All Files (*.*)|*.*|",
                                   .defaultExtension = "msk"};

}  // namespace corvane
