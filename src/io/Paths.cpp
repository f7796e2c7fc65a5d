#include "io/Paths.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace corvane {

namespace {

std::size_t NameStart(std::string_view path) {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string_view::npos ? 0 : separator + 1;
}

// The place of the last "." of the file name, or npos.
std::size_t LastDot(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  return dot != std::string_view::npos && dot >= NameStart(path) ? dot : std::string_view::npos;
}

}  // namespace

std::string FileName(std::string_view path) {
  return std::string(path.substr(NameStart(path)));
}

std::string FileTitle(std::string_view path) {
  const std::size_t start = NameStart(path);
  const std::size_t dot = LastDot(path);
  return std::string(dot == std::string_view::npos ? path.substr(start) : path.substr(start, dot - start));
}

std::string FileExtension(std::string_view path) {
  const std::size_t dot = LastDot(path);
  return dot == std::string_view::npos ? "" : std::string(path.substr(dot));
}

std::string DerivedName(std::string_view path, std::string_view suffix) {
  const std::size_t dot = LastDot(path);
  const std::string_view stem = dot == std::string_view::npos ? std::string_view() : path.substr(0, dot);
  return std::string(stem) + std::string(suffix);
}

std::string WithDefaultExtension(std::string_view path, std::string_view extension) {
  std::string result(path);
  if (extension.empty() || FileName(path).empty() || LastDot(path) != std::string_view::npos) return result;
  if (extension.starts_with("*.")) extension.remove_prefix(1);
  if (extension.front() != '.') result += '.';
  return result.append(extension);
}

std::string AbsolutePath(std::string_view path) {
  std::error_code error;
  const auto absolute = std::filesystem::absolute(std::filesystem::path(path), error);
  return error ? std::string(path) : absolute.lexically_normal().string();
}

bool FileExists(const std::string& path) {
  if (HoldsZero(path)) return false;
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  return std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

bool IsSameFile(const std::string& a, const std::string& b) {
  std::error_code error;
  return std::filesystem::equivalent(a, b, error) && !error;
}

bool IsOneOfFiles(const std::string& path, const std::vector<std::string>& files) {
  return std::any_of(files.begin(), files.end(),
                     [&path](const std::string& file) { return IsSameFile(file, path); });
}

bool IsDevice(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_other(path, error);
}

std::string FirstCharacter(std::string_view text) {
  if (text.empty()) return "";
  std::size_t length = 1;
  const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  while (length < text.size() && length < 4 && isContinuation(text[length])) ++length;
  return std::string(text.substr(0, length));
}

}  // namespace corvane
