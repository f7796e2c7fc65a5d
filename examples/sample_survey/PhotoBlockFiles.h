#pragma once

#include <filesystem>
#include <string>

#include "sample_survey/PhotoBlock.h"

namespace corvane {

// Writes a block of photos with its truth into a folder, which is made if missing: photos, orientation files,
// two project files with their ground points and the camera, the ground, the signals, and a text on all of
// it. `failed`, if that is not possible, is the file.
bool WritePhotoBlock(const PhotoBlock& block, const std::filesystem::path& folder, std::string& failed);

}  // namespace corvane
