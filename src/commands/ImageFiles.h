#pragma once

#include <string>

#include "erdasimg/ErdasImg.h"
#include "ui/FrontEnd.h"

namespace corvane {

// Reading and writing of images by commands, with every failure told.

// Why a command does not write to a file.
inline constexpr const char* kIsInputText = "It is one of the files that the command reads.";

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

// Tells in the message pane that an image of this size has been written, or as many values in another form.
void TellWritten(const std::string& path, const ImageSize& size, const std::string& more = "");
void TellValuesWritten(const std::string& path, const ImageSize& size, const std::string& more = "");

// Writes the result of a command: the command is done if this goes well, and its input could be read. `more`
// ends the text in the message pane.
CommandResult StoreImage(const std::string& path, ErdasImg& image, bool isInputRead,
                         const std::string& more = "");

// The same for its pixels as text.
CommandResult StoreText(const std::string& path, ErdasImg& image, bool isInputRead,
                        const std::string& more = "");

// What a command comes to that has ended well but for its input.
inline CommandResult ResultOf(bool isInputRead) {
  return isInputRead ? CommandResult::Done : CommandResult::Failed;
}

}  // namespace corvane
