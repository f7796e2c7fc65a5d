#pragma once

#include <exception>
#include <initializer_list>
#include <string>
#include <string_view>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "io/TextScanner.h"

namespace corvane {

// What the readers of a project's text files share.

// "%lf %lf ...": false at the first field that is no number, which leaves the rest as they were.
bool ScanReals(TextScanner& text, std::initializer_list<double*> numbers);

// A fiducial's number, x and y into its place in the table; one whose number is not in it is dropped. False
// at the first field that is no number.
bool ScanFiducial(TextScanner& text, Fiducials& fiducials);

// Tells in the message pane that there is no memory for a file.
void TellNoMemory(const std::string& path);

// What `read` returns; `failure`, which is told, if memory can't be had for it.
template <typename Reader>
int ReadWithinMemory(const std::string& path, int failure, Reader read) {
  try {
    return read();
  } catch (const std::exception&) {  // of an allocation, or of a text that is too long for one
    TellNoMemory(path);
    return failure;
  }
}

// Tells in the message pane where a reader has stopped in a file with this content.
void TellWhereStopped(const std::string& path, std::string_view content, const TextScanner& text);

}  // namespace corvane
