#include "cli/PictureBook.h"

#include <algorithm>
#include <filesystem>

#include "io/OutputFile.h"

namespace corvane {

namespace {

constexpr const char* kProbe = ".corvane-probe";
constexpr std::size_t kMostTitleBytes = 200;  // a file name holds 255

bool FitsFileName(char character) {
  const auto code = static_cast<unsigned char>(character);
  return code >= 0x20 && code != 0x7f &&
         std::string_view("/\\:*?\"<>|").find(character) == std::string_view::npos;
}

// The first bytes of a UTF-8 text, no character cut.
std::string Shortened(std::string text, std::size_t size) {
  if (text.size() <= size) return text;
  while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xc0) == 0x80) --size;
  text.resize(size);
  return text;
}

}  // namespace

PictureBook::PictureBook(FrontEnd& inner, const std::string& folder)
    : ForwardingFrontEnd(inner), folder_(folder) {}

bool PictureBook::MakeFolder() const {
  std::error_code error;
  std::filesystem::create_directories(folder_, error);
  return OutputFile((std::filesystem::path(folder_) / kProbe).string()).IsOpen();
}

bool PictureBook::Window::SaveTo(const std::string& path) const {
  return graph ? SavePicture(*graph, path) : SavePicture(*view, path);
}

PictureBook::SavedPictures PictureBook::Save() {
  SavedPictures saved;
  for (Window& window : windows_) {
    const std::string title = window.GetTitle();
    const bool changed = window.changed || title != window.savedTitle;
    if (!changed || !window.HasPicture()) continue;
    window.changed = false;
    window.savedTitle = title;
    if (window.number == 0) window.number = ++nNumbered_;
    gui_.Start();
    const std::string name = PictureFileName(window.number, title);
    const std::string path = (std::filesystem::path(folder_) / name).string();
    if (window.SaveTo(path)) {
      saved.paths.push_back(path);
    } else {
      saved.failures.push_back("The picture " + path + " could not be written.");
    }
  }
  return saved;
}

void PictureBook::OpenWindow(WindowView& view) {
  windows_.push_back({&view});
  ForwardingFrontEnd::OpenWindow(view);
}

void PictureBook::CloseWindow(WindowView& view) {
  std::erase_if(windows_, [&](const Window& window) { return window.view == &view; });
  ForwardingFrontEnd::CloseWindow(view);
}

void PictureBook::RepaintWindow(WindowView& view, bool atOnce) {
  for (Window& window : windows_) {
    if (window.view == &view && !window.graph) window.changed = true;
  }
  ForwardingFrontEnd::RepaintWindow(view, atOnce);
}

bool PictureBook::ShowGraph(WindowView& view, const GraphView& graph) {
  if (!ForwardingFrontEnd::ShowGraph(view, graph)) return false;
  if (!FindGraph(graph)) windows_.push_back({&view, &graph});
  return true;
}

void PictureBook::PlotGraph(const GraphView& graph, int element) {
  if (Window* window = FindGraph(graph)) window->changed = true;
  ForwardingFrontEnd::PlotGraph(graph, element);
}

void PictureBook::ResizeGraph(const GraphView& graph) {
  if (Window* window = FindGraph(graph)) window->changed = true;
  ForwardingFrontEnd::ResizeGraph(graph);
}

PictureBook::Window* PictureBook::FindGraph(const GraphView& graph) {
  const auto found = std::find_if(windows_.begin(), windows_.end(),
                                  [&](const Window& window) { return window.graph == &graph; });
  return found == windows_.end() ? nullptr : &*found;
}

std::string PictureFileName(int number, const std::string& title) {
  std::string text = Shortened(title, kMostTitleBytes);
  std::replace_if(
      text.begin(), text.end(), [](char c) { return !FitsFileName(c); }, '_');
  std::string name = number < 10 ? "0" : "";
  name += std::to_string(number) + '-' + text + ".png";
  return name;
}

}  // namespace corvane
