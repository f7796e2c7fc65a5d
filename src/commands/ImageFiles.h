#pragma once

#include <string>

#include "erdasimg/ImageFiles.h"
#include "ui/FrontEnd.h"

namespace corvane {

// The results of commands that are images.

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
