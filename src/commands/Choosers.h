#pragma once

#include "shell/MaskChooser.h"
#include "ui/FileChooser.h"

namespace corvane {

// The file choosers that several commands show.

inline constexpr const char* kPointsFilter = "Points Files (*.pts)|*.pts|All Files (*.*)|*.*|";

inline constexpr const char* kImageFilter = "Image Files (*.lan)|*.lan|All Files (*.*)|*.*|";

inline const FileChooser kOpenAnImage{.filter = kImageFilter, .title = "Choose an Image."};
inline const FileChooser kOpenAImage{.filter = kImageFilter, .title = "Choose a Image."};

inline const FileChooser kOpenPoints{.filter = kPointsFilter};
inline const FileChooser kSavePoints{
    .mode = FileChooser::Mode::Save, .filter = kPointsFilter, .defaultExtension = "pts"};

inline const FileChooser kSaveText{.mode = FileChooser::Mode::Save,
                                   .filter = "Text Files (*.txt)|*.txt|All Files (*.*)|*.*|",
                                   .defaultExtension = "txt"};

}  // namespace corvane
