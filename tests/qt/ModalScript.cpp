#include "qt/ModalScript.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QScopedValueRollback>
#include <QTimer>
#include <utility>

namespace corvane {

namespace {

constexpr int kTick = 5;  // milliseconds

}  // namespace

ModalScript::ModalScript(std::initializer_list<Step> steps) : steps_(steps) {
  QTimer::singleShot(kTick, this, [this] { Tick(); });
}

ModalScript::~ModalScript() {
  EXPECT_TRUE(steps_.empty()) << steps_.size() << " steps found no dialog";
}

// A step may open the next dialog before it returns, so the next tick is ordered first.
void ModalScript::Tick() {
  QTimer::singleShot(kTick, this, [this] { Tick(); });
  QWidget* dialog = QApplication::activeModalWidget();
  if (!dialog || dialog == acting_) return;
  // The one before may have closed just now, and what follows from that not be done yet.
  if (std::exchange(seen_, dialog) != dialog) return;
  seen_ = nullptr;
  if (steps_.empty()) {
    ADD_FAILURE() << "unexpected dialog: " << dialog->windowTitle().toStdString() << ": "
                  << BoxText(*dialog).toStdString();
    static_cast<QDialog*>(dialog)->reject();
    return;
  }
  const Step step = steps_.front();
  steps_.pop_front();
  const QScopedValueRollback acting(acting_, dialog);
  step(*dialog);
}

void TypeInto(QWidget& dialog, const char* editor, const char* text) {
  auto* edit = dialog.findChild<QLineEdit*>(editor);
  ASSERT_NE(edit, nullptr) << editor;
  edit->selectAll();
  edit->insert(text);
}

void PressKey(QWidget& widget, int key, Qt::KeyboardModifiers modifiers) {
  QKeyEvent press(QEvent::KeyPress, key, modifiers);
  QApplication::sendEvent(&widget, &press);
  QKeyEvent release(QEvent::KeyRelease, key, modifiers);
  QApplication::sendEvent(&widget, &release);
}

void PressButton(QWidget& dialog, const char* text) {
  for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>()) {
    if (button->text().remove('&') == text) {
      button->click();
      return;
    }
  }
  ADD_FAILURE() << "no button " << text;
  static_cast<QDialog&>(dialog).reject();
}

ModalScript::Step Press(const char* button) {
  return [button](QWidget& dialog) { PressButton(dialog, button); };
}

QString BoxText(const QWidget& box) {
  const auto* messageBox = dynamic_cast<const QMessageBox*>(&box);
  return messageBox ? messageBox->text() : QString();
}

}  // namespace corvane
