#pragma once

#include <QWidget>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ui/FileChooser.h"
#include "ui/GraphView.h"

class QAction;

namespace corvane {

class CPlotPane;

// The graph over a view's client area: the plot, and above it a row of buttons, which the menu of the right
// button has, too.
class CGraphWindow : public QWidget {
 public:
  // Asks a person for the path of a file; nothing on Cancel.
  using Browser = std::function<std::optional<std::string>(const FileChooser&)>;

  CGraphWindow(const GraphView& graph, Browser browse, QWidget* parent);

  // Hears of the wish to see what is under the graph.
  std::function<void()> onHide;

  // Null after Detach.
  const GraphView* GetGraph() const { return graph_; }
  // The graph is about to end, perhaps before this window does: it is not touched any more.
  void Detach() { graph_ = nullptr; }

  // The element has new points; all have, for -1.
  void Plot(int element);

  // Up and Down zoom, Left and Right move, Home shows everything, Esc hides the graph. False for other keys.
  bool OnKey(int key);

  CPlotPane& GetPane() { return *pane_; }
  // Reset, Save as PNG..., Save as CSV..., Hide.
  const std::vector<QAction*>& GetItems() const { return items_; }

 private:
  QWidget* MakeToolRow();
  void AddItem(const QString& text, const QString& tip, void (CGraphWindow::*run)());
  void ShowMenu(QPoint place);

  void Reset();
  void SaveAsPng();
  void SaveAsCsv();
  void Hide();

  // A kind of file that the graph is saved as.
  struct FileKind {
    std::string name;
    std::string extension;
    std::string failedPath;  // of the last saving, if it failed: offered again
  };
  void Save(FileKind& kind, const std::function<bool(const std::string& path)>& write);
  std::optional<std::string> AskPath(const FileKind& kind);

  const GraphView* graph_;
  Browser browse_;
  CPlotPane* pane_;
  FileKind png_{"PNG Images", ".png", ""};
  FileKind csv_{"Comma-Separated Values", ".csv", ""};
  std::vector<QAction*> items_;
};

}  // namespace corvane
