#pragma once

#include <memory>
#include <string>
#include <vector>

namespace corvane {

class CChildFrame;
class CDocTemplate;
class CMainFrame;
class CView;

// A document: a path, a title, a modified flag, and the windows on it.
class CDocument {
 public:
  explicit CDocument(CMainFrame& frame);
  virtual ~CDocument();
  CDocument(const CDocument&) = delete;
  CDocument& operator=(const CDocument&) = delete;

  // The open step: the document takes its content from a file. Above 0 on success; 0 fails the opening;
  // below 0 the content could not be read, which has been reported, and the document opens empty.
  virtual int OnOpenDocument(const std::string& path);

  // Whether the document holds what its file should have given. One that does not is opened anew when its
  // file is chosen again.
  virtual bool HasContent() const { return true; }

  // The save step: above 0 on success; 0 if nothing has been saved, and the document keeps its path; below 0
  // if a part is missing. Failures have been reported.
  virtual int OnSaveDocument(const std::string& path);

  // What the chooser for a document without a file shows.
  virtual std::string GetSuggestedName() const { return title_; }

  const std::string& GetPathName() const { return pathName_; }  // "" for a document without a file
  // Also makes the file's name the title; `addToRecentList` puts the path on the recent-file list.
  void SetPathName(const std::string& path, bool addToRecentList);

  const std::string& GetTitle() const { return title_; }
  void SetTitle(const std::string& title);

  bool IsModified() const { return modified_; }
  void SetModifiedFlag(bool modified) { modified_ = modified; }

  // Adds a window of the template's view kind, runs its first update and shows it.
  CView& AddView();
  const std::vector<std::unique_ptr<CChildFrame>>& GetFrames() const { return frames_; }

  // Tells every view that the content has changed.
  void UpdateAllViews();

  CMainFrame& GetMainFrame() const { return frame_; }
  const CDocTemplate& GetTemplate() const { return *template_; }

 private:
  friend class CDocTemplate;
  friend class CCorvaneApp;

  CMainFrame& frame_;
  const CDocTemplate* template_ = nullptr;
  std::string pathName_;
  std::string title_;
  bool modified_ = false;
  std::vector<std::unique_ptr<CChildFrame>> frames_;
};

}  // namespace corvane
