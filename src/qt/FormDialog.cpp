#include "qt/FormDialog.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <algorithm>

#include "forms/FieldText.h"
#include "qt/QtText.h"

namespace corvane {

namespace {

constexpr const char* kProblemStyle = "color: #b3261e;";
constexpr const char* kRefusedStyle = "QLineEdit, QListWidget { border: 1px solid #b3261e; padding: 2px; }";
constexpr int kNumberWidth = 140;  // pixels
constexpr int kTextWidth = 320;
constexpr int kTitleButtons = 120;  // beside the title
constexpr int kWidestTitle = 600;

enum Column { kLabelColumn, kEditorColumn, kHintColumn };

QString SelectedRows(const QListWidget& list) {
  QStringList rows;
  for (int row = 0; row < list.count(); ++row) {
    if (list.item(row)->isSelected()) rows.append(QString::number(row));
  }
  return rows.join(',');
}

QString EditorText(const QWidget& editor) {
  if (const auto* list = dynamic_cast<const QListWidget*>(&editor)) return SelectedRows(*list);
  return static_cast<const QLineEdit&>(editor).text();
}

QListWidget* MakeList(const FormField& field) {
  auto* list = new QListWidget;
  list->setSelectionMode(QAbstractItemView::ExtendedSelection);
  for (const std::string& item : field.items) list->addItem(Shown(item));
  for (const int row : std::get<std::vector<int>>(field.value)) {
    if (QListWidgetItem* item = list->item(row)) item->setSelected(true);
  }
  return list;
}

// A title bar may be cut off, or there may be none.
QLabel* MakeQuestion(const std::string& title) {
  auto* question = new QLabel(Shown(title));
  question->setObjectName("question");
  question->setTextFormat(Qt::PlainText);
  question->setWordWrap(true);
  return question;
}

}  // namespace

CFormDialog::CFormDialog(const Form& form, Buttons buttons, Browser browse, QWidget* parent)
    : QDialog(parent), form_(form), browse_(std::move(browse)) {
  setWindowTitle(Shown(form.title));
  auto* layout = new QVBoxLayout(this);
  layout->addStrut(std::min(kWidestTitle, fontMetrics().horizontalAdvance(windowTitle()) + kTitleButtons));
  if (buttons == Buttons::None) layout->addWidget(MakeQuestion(form.title));
  auto* grid = new QGridLayout;
  grid->setColumnStretch(kEditorColumn, 1);
  layout->addLayout(grid);
  int line = 0;
  for (const FormField& field : form_.fields) {
    AddField(field, *grid, line);
    line += 2;  // the field, and the words under it
  }
  if (buttons == Buttons::None) return;
  auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  connect(box, &QDialogButtonBox::accepted, this, [this] { accept(); });
  connect(box, &QDialogButtonBox::rejected, this, [this] { reject(); });
  layout->addStretch();
  layout->addWidget(box);
}

void CFormDialog::AddField(const FormField& field, QGridLayout& grid, int line) {
  const Row row = {MakeEditor(field), MakeProblem(field)};
  rows_.push_back(row);
  if (!field.label.empty()) {
    auto* label = new QLabel(Shown(field.label));
    label->setTextFormat(Qt::PlainText);
    grid.addWidget(label, line, kLabelColumn);
  }
  const bool hints = std::any_of(form_.fields.begin(), form_.fields.end(),
                                 [](const FormField& other) { return other.browse || !other.hint.empty(); });
  grid.addWidget(row.editor, line, kEditorColumn, 1, hints ? 1 : 2);
  if (field.browse) {
    grid.addWidget(MakeBrowseButton(field, row.editor), line, kHintColumn);
  } else if (!field.hint.empty()) {
    auto* hint = new QLabel(Shown(field.hint));
    hint->setTextFormat(Qt::PlainText);
    hint->setForegroundRole(QPalette::PlaceholderText);
    grid.addWidget(hint, line, kHintColumn);
  }
  grid.addWidget(row.problem, line + 1, kEditorColumn, 1, 2);
}

// Enter in an edit box presses the default button, or confirms where there is none.
QWidget* CFormDialog::MakeEditor(const FormField& field) {
  if (field.type == FieldType::Selection) {
    QListWidget* list = MakeList(field);
    list->setObjectName(Shown(field.name));
    return list;
  }
  auto* edit = new QLineEdit(Shown(FieldText(field)));
  edit->setObjectName(Shown(field.name));
  edit->setMinimumWidth(field.type == FieldType::Text ? kTextWidth : kNumberWidth);
  edit->selectAll();
  connect(edit, &QLineEdit::textEdited, this, [this, place = rows_.size()] { ClearProblem(rows_[place]); });
  connect(edit, &QLineEdit::returnPressed, this, [this] {
    if (!findChild<QDialogButtonBox*>()) accept();
  });
  return edit;
}

QLabel* CFormDialog::MakeProblem(const FormField& field) {
  auto* problem = new QLabel;
  problem->setObjectName(Shown(field.name) + " problem");
  problem->setStyleSheet(kProblemStyle);
  problem->setTextFormat(Qt::PlainText);
  problem->setTextInteractionFlags(Qt::TextSelectableByMouse);
  problem->hide();
  return problem;
}

QWidget* CFormDialog::MakeBrowseButton(const FormField& field, QWidget* editor) {
  auto* button = new QPushButton("Browse");
  button->setObjectName(Shown(field.name) + " browse");
  button->setAutoDefault(false);
  connect(button, &QPushButton::clicked, this, [this, chooser = *field.browse, editor] {
    if (const auto path = browse_(chooser)) static_cast<QLineEdit*>(editor)->setText(Shown(*path));
  });
  return button;
}

void CFormDialog::accept() {
  Form entered = form_;
  for (const Row& row : rows_) ClearProblem(row);
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const std::string text = Plain(EditorText(*rows_[i].editor));
    if (const auto words = SetFieldFromText(entered.fields[i], text)) {
      ShowProblem(rows_[i], Shown(*words));
      return;
    }
  }
  form_ = std::move(entered);
  QDialog::accept();
}

void CFormDialog::ShowProblem(const Row& row, const QString& words) {
  row.problem->setText(words);
  row.problem->show();
  row.editor->setStyleSheet(kRefusedStyle);
  row.editor->setFocus();
  if (auto* edit = dynamic_cast<QLineEdit*>(row.editor)) edit->selectAll();
}

void CFormDialog::ClearProblem(const Row& row) {
  row.problem->hide();
  row.editor->setStyleSheet("");
}

}  // namespace corvane
