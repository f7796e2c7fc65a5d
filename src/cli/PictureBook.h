#pragma once

#include <string>
#include <vector>

#include "cli/ForwardingFrontEnd.h"
#include "picture/Picture.h"

namespace corvane {

// Keeps a PNG file of every open window that has a picture: FOLDER/NN-TITLE.png, NN from 01 in the order in
// which windows first had one. A window keeps its number.
class PictureBook : public ForwardingFrontEnd {
 public:
  PictureBook(FrontEnd& inner, const std::string& folder);

  struct SavedPictures {
    std::vector<std::string> paths;
    std::vector<std::string> failures;  // the texts to report
  };

  // Makes the folder where there is none. False if no file can be written there.
  bool MakeFolder() const;

  // Saves the windows that are new, or were repainted or renamed since the last call. A renamed window gets
  // another file; the old one stays.
  SavedPictures Save();

  void OpenWindow(WindowView& view) override;
  void CloseWindow(WindowView& view) override;
  void RepaintWindow(WindowView& view, bool atOnce) override;

 private:
  struct Window {
    WindowView* view = nullptr;
    int number = 0;  // 0 before its first picture
    bool changed = true;
    std::string savedTitle = {};
  };

  std::string folder_;
  std::vector<Window> windows_;
  int nNumbered_ = 0;
  OffscreenGui gui_;
};

// "01-survey.tin.png": what a file name can't hold becomes "_".
std::string PictureFileName(int number, const std::string& title);

}  // namespace corvane
