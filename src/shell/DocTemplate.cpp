#include "shell/DocTemplate.h"

#include <vector>

namespace corvane {

namespace {

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines(1);
  for (const char character : text) {
    if (character == '\n') {
      lines.emplace_back();
    } else {
      lines.back() += character;
    }
  }
  return lines;
}

}  // namespace

CDocTemplate::CDocTemplate(int resourceId, const std::string& strings, DocumentFactory makeDocument,
                           ViewFactory makeView)
    : resourceId_(resourceId), makeDocument_(std::move(makeDocument)), makeView_(std::move(makeView)) {
  std::vector<std::string> lines = Lines(strings);
  lines.resize(7);
  documentName_ = lines[1];
  filterName_ = lines[3];
  filterExtension_ = lines[4];
}

FileChooser CDocTemplate::MakeChooser(FileChooser::Mode mode, const std::string& defaultName) const {
  FileChooser chooser;
  chooser.mode = mode;
  chooser.filter = filterName_ + "|*" + filterExtension_ + "|";
  chooser.defaultExtension = filterExtension_;
  chooser.defaultName = defaultName;
  chooser.title = mode == FileChooser::Mode::Open ? "Open" : "Save As";
  return chooser;
}

std::unique_ptr<CDocument> CDocTemplate::MakeDocument(CMainFrame& frame) const {
  auto document = makeDocument_(frame);
  document->template_ = this;
  return document;
}

}  // namespace corvane
