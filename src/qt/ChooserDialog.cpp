#include "qt/ChooserDialog.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QTreeView>
#include <algorithm>

#include "forms/ChosenPath.h"
#include "io/Paths.h"
#include "qt/QtText.h"

namespace corvane {

namespace {

constexpr QSize kFirstSize(860, 520);
constexpr int kTypeColumn = 2;

}  // namespace

QStringList NameFilters(const std::string& filter) {
  QStringList filters;
  for (const FilterEntry& entry : FilterEntries(filter)) {
    QStringList patterns = Shown(entry.pattern).split(';', Qt::SkipEmptyParts);
    patterns.replaceInStrings("*.*", "*");
    filters.append(Shown(entry.name).trimmed() + "(" + patterns.join(' ') + ")");
  }
  return filters;
}

CChooserDialog::CChooserDialog(const FileChooser& chooser, const QString& folder, QWidget* parent)
    : QFileDialog(parent), chooser_(chooser) {
  const bool save = chooser.mode == FileChooser::Mode::Save;
  setOption(DontUseNativeDialog);
  setOption(HideNameFilterDetails);
  setOption(DontConfirmOverwrite);  // the check here knows the default extension
  setAcceptMode(save ? AcceptSave : AcceptOpen);
  setFileMode(AnyFile);  // names without a file reach the checks here
  if (!chooser.title.empty()) {
    setWindowTitle(Shown(chooser.title));
  } else {
    setWindowTitle(save ? "Save As" : "Open");
  }
  const QStringList filters = NameFilters(chooser.filter);
  if (!filters.isEmpty()) setNameFilters(filters);
  ShowWide();
  setDirectory(folder);
  if (!chooser.defaultName.empty()) selectFile(Shown(chooser.defaultName));
}

// Several names stand in quotes. Qt gives those that exist, and leaves the others out.
QStringList CChooserDialog::GetFiles() const {
  const QStringList parts = findChild<QLineEdit*>("fileNameEdit")->text().split('"');
  if (!chooser_.multiple || parts.size() < 2) return selectedFiles();
  QStringList files;
  for (qsizetype i = 1; i < parts.size(); i += 2) files.append(directory().absoluteFilePath(parts[i]));
  return files;
}

std::vector<std::string> CChooserDialog::GetPaths() const {
  std::vector<std::string> paths;
  for (const QString& file : GetFiles()) paths.push_back(ChosenPath(chooser_, Plain(file)));
  return paths;
}

void CChooserDialog::ShowWide() {
  resize(kFirstSize);
  auto* details = findChild<QTreeView*>("treeView");
  details->setColumnHidden(kTypeColumn, true);
  details->header()->setStretchLastSection(false);
  details->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  details->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  if (!chooser_.multiple) return;
  // Qt's own mode for several files refuses names that do not exist.
  details->setSelectionMode(QAbstractItemView::ExtendedSelection);
  findChild<QListView*>("listView")->setSelectionMode(QAbstractItemView::ExtendedSelection);
}

void CChooserDialog::accept() {
  const QStringList files = GetFiles();
  const bool accepted = !files.isEmpty() &&
                        std::all_of(files.begin(), files.end(), [this](const auto& f) { return Accepts(f); });
  if (accepted) {
    QDialog::accept();
  } else {
    SelectName();
  }
}

bool CChooserDialog::Accepts(const QString& file) {
  const QFileInfo info(file);
  if (info.isDir()) {
    setDirectory(file);
    return false;
  }
  const bool pattern = info.fileName().contains('*') || info.fileName().contains('?');
  if (pattern && !info.exists()) {
    FilterBy(info.fileName());
    return false;
  }
  return MayAccept(ChosenPath(chooser_, Plain(file)));
}

void CChooserDialog::FilterBy(const QString& pattern) {
  const QString filter = pattern + "(" + pattern + ")";
  setNameFilters(NameFilters(chooser_.filter) + QStringList(filter));
  selectNameFilter(filter);
}

// The next typed name takes the place of this one.
void CChooserDialog::SelectName() {
  auto* name = findChild<QLineEdit*>("fileNameEdit");
  if (name->completer()) name->completer()->popup()->hide();
  name->setFocus();
  name->selectAll();
}

bool CChooserDialog::MayAccept(const std::string& path) {
  const QString name = Shown(corvane::FileName(path));
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
