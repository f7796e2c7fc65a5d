#pragma once

#include <string>

#include "erdasimg/ErdasImg.h"
#include "ui/FrontEnd.h"

namespace corvane {

// Reading and writing of images by commands, with every failure told.

// Whether an image that has been read has anything in it.
bool HasPixels(const ErdasImg& image);

// False if the image could not be read, which has been shown. A command then goes on with what the image
// holds; one that has no pixels is empty, with the header of a new image.
bool ReadImage(const std::string& path, ErdasImg& image);

// False if the image could not be written, which has been shown.
bool WriteImage(const std::string& path, ErdasImg& image);

// The same from what ErdasImg::Write has returned.
bool IsWritten(const std::string& path, int status);

// Tells in the message pane what has been written.
void TellWritten(const std::string& path, const ImageSize& size, const std::string& more = "");

// Writes the result of a command: the command is done if this goes well, and its input could be read.
CommandResult StoreImage(const std::string& path, ErdasImg& image, bool isInputRead);

// What a command comes to that has ended well but for its input.
inline CommandResult ResultOf(bool isInputRead) {
  return isInputRead ? CommandResult::Done : CommandResult::Failed;
}

}  // namespace corvane
