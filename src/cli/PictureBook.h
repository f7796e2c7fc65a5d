#pragma once

#include <string>
#include <vector>

#include "cli/ForwardingFrontEnd.h"
#include "picture/Picture.h"

namespace corvane {

// Keeps a PNG file of every open window that has a picture, and of every graph over one: FOLDER/NN-TITLE.png,
// NN from 01 in the order in which they first had one. A window keeps its number, and so does a graph.
class PictureBook : public ForwardingFrontEnd {
 public:
  PictureBook(FrontEnd& inner, const std::string& folder);

  struct SavedPictures {
    std::vector<std::string> paths;
    std::vector<std::string> failures;  // the texts to report
  };

  // Makes the folder where there is none. False if no file can be written there.
  bool MakeFolder() const;

  // Saves the windows that are new, or were repainted or renamed since the last call, and the graphs that are
  // new or were plotted into. A renamed window gets another file; the old one stays.
  SavedPictures Save();

  void OpenWindow(WindowView& view) override;
  void CloseWindow(WindowView& view) override;
  void RepaintWindow(WindowView& view, bool atOnce) override;
  bool ShowGraph(WindowView& view, const GraphView& graph) override;
  void PlotGraph(const GraphView& graph, int element) override;
  void ResizeGraph(const GraphView& graph) override;

 private:
  // A window, or the graph over one.
  struct Window {
    WindowView* view = nullptr;
    const GraphView* graph = nullptr;
    int number = 0;  // 0 before its first picture
    bool changed = true;
    std::string savedTitle = {};

    std::string GetTitle() const { return graph ? graph->GetTitle() : view->GetTitle(); }
    bool HasPicture() const { return graph || view->HasPicture(); }
    bool SaveTo(const std::string& path) const;
  };

  Window* FindGraph(const GraphView& graph);

  std::string folder_;
  std::vector<Window> windows_;
  int nNumbered_ = 0;
  OffscreenGui gui_;
};

// "01-survey.tin.png": what a file name can't hold becomes "_".
std::string PictureFileName(int number, const std::string& title);

}  // namespace corvane
