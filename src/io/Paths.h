#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corvane {

// Paths are UTF-8. Where a name is cut from a path both "/" and "\" separate folders.

// "a/b/x.y.tin" gives "x.y.tin".
std::string FileName(std::string_view path);

// "a/b/x.y.tin" gives "x.y", the name without its last extension; "a/b/x" gives "x".
std::string FileTitle(std::string_view path);

// "a/b/x.y.tin" gives ".tin"; a name without "." gives "".
std::string FileExtension(std::string_view path);

// The output beside an input: the path cut at the last "." of its file name, plus the suffix.
// "a/x.y.tin" with "_filted.pts" gives "a/x.y_filted.pts". A file name without "." gives the suffix alone,
// which then stands in the current folder.
std::string DerivedName(std::string_view path, std::string_view suffix);

// The path with "." and the extension appended if its file name has none. An extension may bring its own
// leading "." or "*."; an empty one leaves the path as it is.
std::string WithDefaultExtension(std::string_view path, std::string_view extension);

// The absolute form of a path, without "." and ".." where they can be resolved.
std::string AbsolutePath(std::string_view path);

// Whether a path holds a zero. The system would end it there, and so take it for another file's.
inline bool HoldsZero(std::string_view path) {
  return path.find('\0') != path.npos;
}

// Whether there is something on this path that is not a folder.
bool FileExists(const std::string& path);

// Whether both paths lead to one file that is there, by whatever name or link.
bool IsSameFile(const std::string& a, const std::string& b);

// Whether the path leads to one of these files.
bool IsOneOfFiles(const std::string& path, const std::vector<std::string>& files);

// Whether there is a device or a pipe on this path.
bool IsDevice(const std::string& path);

// The first character of a UTF-8 text: one whole code point, or "" of an empty text.
std::string FirstCharacter(std::string_view text);

}  // namespace corvane
