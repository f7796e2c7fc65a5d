#pragma once

#include <QFileDialog>
#include <string>
#include <vector>

#include "ui/FileChooser.h"

namespace corvane {

// The file chooser. A name without an extension gets the chooser's default one; a chooser that requires an
// existing file stays open on a missing one, every chooser on a pattern in place of a name, and a save
// chooser asks before a file is replaced.
class CChooserDialog : public QFileDialog {
 public:
  CChooserDialog(const FileChooser& chooser, const QString& folder, QWidget* parent);

  // The chosen paths, with default extension.
  std::vector<std::string> GetPaths() const;

 protected:
  void accept() override;

 private:
  bool MayAccept(const std::string& path);

  FileChooser chooser_;
};

// A filter string's pairs as the chooser shows them: "TIN Files (*.tin)". Several patterns are separated by
// blanks, and "*.*" means every file, with or without a dot.
QStringList NameFilters(const std::string& filter);

}  // namespace corvane
