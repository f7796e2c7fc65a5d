#pragma once

#include <QFileDialog>
#include <string>
#include <vector>

#include "ui/FileChooser.h"

namespace corvane {

// The file chooser. A name without an extension gets the chooser's default one; a chooser that requires an
// existing file stays open on a missing one, and a save chooser asks before a file is replaced. A folder in
// place of a name is entered, a pattern becomes the filter. Whenever the chooser stays open, the next typed
// name takes the place of the one before.
class CChooserDialog : public QFileDialog {
 public:
  CChooserDialog(const FileChooser& chooser, const QString& folder, QWidget* parent);

  // The chosen paths, with default extension.
  std::vector<std::string> GetPaths() const;

 protected:
  void accept() override;

 private:
  QStringList GetFiles() const;
  // Whether a typed or selected name is the person's answer.
  bool Accepts(const QString& file);
  bool MayAccept(const std::string& path);
  void FilterBy(const QString& pattern);
  void SelectName();
  void ShowWide();

  FileChooser chooser_;
};

// A filter string's pairs as the chooser takes them: the name as it shows and, behind it in brackets, the
// patterns: "TIN Files (*.tin)(*.tin)". Several patterns are separated by blanks, and "*.*" means every file,
// with or without a dot.
QStringList NameFilters(const std::string& filter);

}  // namespace corvane
