#pragma once

#include <QDialog>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ui/Form.h"

class QGridLayout;
class QLabel;

namespace corvane {

// The dialog made from a form's declaration. A value that the form refuses keeps the dialog open: the field
// is marked and gets the focus, and the form's own words stand under it.
class CFormDialog : public QDialog {
 public:
  enum class Buttons { OkCancel, None };  // without buttons Enter confirms and Esc cancels
  using Browser = std::function<std::optional<std::string>(const FileChooser&)>;

  // `browse` shows the chooser of a Browse button.
  CFormDialog(const Form& form, Buttons buttons, Browser browse, QWidget* parent);

  // The form with the values that were accepted.
  const Form& GetForm() const { return form_; }

  void accept() override;

 private:
  struct Row {
    QWidget* editor = nullptr;
    QLabel* problem = nullptr;
  };

  void AddField(const FormField& field, QGridLayout& grid, int line);
  QWidget* MakeEditor(const FormField& field);
  QLabel* MakeProblem(const FormField& field);
  QWidget* MakeBrowseButton(const FormField& field, QWidget* editor);
  void ShowProblem(const Row& row, const QString& words);
  void ClearProblem(const Row& row);

  Form form_;
  Browser browse_;
  std::vector<Row> rows_;  // of form_'s fields, in their order
};

}  // namespace corvane
