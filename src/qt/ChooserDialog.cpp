#include "qt/ChooserDialog.h"

#include <QFileInfo>
#include <QMessageBox>

#include "forms/ChosenPath.h"
#include "io/Paths.h"
#include "qt/QtText.h"

namespace corvane {

QStringList NameFilters(const std::string& filter) {
  QStringList filters;
  for (const FilterEntry& entry : FilterEntries(filter)) {
    QString name = Shown(entry.name);
    if (name.trimmed().endsWith(')')) name.truncate(name.lastIndexOf('('));
    QStringList patterns = Shown(entry.pattern).split(';', Qt::SkipEmptyParts);
    patterns.replaceInStrings("*.*", "*");
    filters.append(name.trimmed() + " (" + patterns.join(' ') + ")");
  }
  return filters;
}

CChooserDialog::CChooserDialog(const FileChooser& chooser, const QString& folder, QWidget* parent)
    : QFileDialog(parent), chooser_(chooser) {
  const bool save = chooser.mode == FileChooser::Mode::Save;
  setOption(DontUseNativeDialog);
  setOption(DontConfirmOverwrite);  // the check here knows the default extension
  setAcceptMode(save ? AcceptSave : AcceptOpen);
  setFileMode(chooser.multiple ? ExistingFiles : AnyFile);
  if (!chooser.title.empty()) {
    setWindowTitle(Shown(chooser.title));
  } else {
    setWindowTitle(save ? "Save As" : "Open");
  }
  const QStringList filters = NameFilters(chooser.filter);
  if (!filters.isEmpty()) setNameFilters(filters);
  setDirectory(folder);
  if (!chooser.defaultName.empty()) selectFile(Shown(chooser.defaultName));
}

std::vector<std::string> CChooserDialog::GetPaths() const {
  std::vector<std::string> paths;
  for (const QString& file : selectedFiles()) paths.push_back(ChosenPath(chooser_, Plain(file)));
  return paths;
}

void CChooserDialog::accept() {
  const QStringList files = selectedFiles();
  const bool oneFile = !chooser_.multiple && files.size() == 1 && !QFileInfo(files.front()).isDir();
  if (oneFile && !MayAccept(GetPaths().front())) return;
  QFileDialog::accept();
}

bool CChooserDialog::MayAccept(const std::string& path) {
  const QString name = Shown(corvane::FileName(path));
  if (name.contains('*') || name.contains('?')) return false;  // a pattern, not yet a name
  if (chooser_.mode == FileChooser::Mode::Save && FileExists(path)) {
    return QMessageBox::warning(this, windowTitle(), name + " already exists.\nDo you want to replace it?",
                                QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
  }
  if (chooser_.mode == FileChooser::Mode::Open && chooser_.mustExist && !FileExists(path)) {
    QMessageBox::warning(this, windowTitle(), name + "\nFile not found.\nCheck the file name and try again.");
    return false;
  }
  return true;
}

}  // namespace corvane
