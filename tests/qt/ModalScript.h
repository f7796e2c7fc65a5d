#pragma once

#include <QObject>
#include <deque>
#include <functional>

class QPushButton;
class QWidget;

namespace corvane {

// Acts on the modal dialogs that code under test shows, as a person would: one step after the other, each on
// the dialog that is in front by then. Fails the test for steps that found no dialog, and for dialogs that
// found no step.
class ModalScript : public QObject {
 public:
  using Step = std::function<void(QWidget& dialog)>;

  explicit ModalScript(std::initializer_list<Step> steps);
  ~ModalScript() override;

 private:
  void Tick();

  std::deque<Step> steps_;
  QWidget* acting_ = nullptr;  // the dialog that a step is under way on
  QWidget* seen_ = nullptr;    // the dialog that was in front at the last look
};

// Types a text into the dialog's edit box of that name, in place of what stands there.
void TypeInto(QWidget& dialog, const char* editor, const char* text);
void PressKey(QWidget& widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

// Presses the dialog's button with that text, access key left out.
void PressButton(QWidget& dialog, const char* text);
ModalScript::Step Press(const char* button);

// The text of a message box.
QString BoxText(const QWidget& box);

}  // namespace corvane
