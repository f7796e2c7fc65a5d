#pragma once

#include <cstdint>
#include <string>

#include "erdasimg/ErdasImg.h"

namespace corvane {

// Reading and writing of images with every failure told.

// False if the image could not be read, or only in part, which has been shown. A command then goes on with
// what the image holds; one that has no pixels is empty, with the header of a new image. A .lan that lacks
// pixels is read, which the message pane tells, but not one that lacks more than ErdasImg::kMaxFilledBytes
// and more than the bytes that its file holds.
bool ReadImage(const std::string& path, ErdasImg& image);

// Tells in the message pane if the image comes from a file that has been cut short.
void TellCut(const ErdasImg& image);

// What the last status text of a command ends with: that the file has been cut short, if so. `name` is what
// it calls the image.
std::string CutText(const ErdasImg& image, const std::string& name = "The image");

// The same for a command to which all pixels are bytes: that those of this type are wider, if so.
std::string AsBytesText(std::uint16_t packType);

// False if the image could not be written, which has been shown.
bool WriteImage(const std::string& path, ErdasImg& image);

// The same from what ErdasImg::Write has returned.
bool IsWritten(const std::string& path, int status);

}  // namespace corvane
