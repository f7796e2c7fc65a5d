#include "cli/Transcript.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace corvane {

namespace {

using Json = nlohmann::ordered_json;

Json NumberJson(double number) {
  if (std::isfinite(number)) return number;
  if (std::isnan(number)) return "nan";
  return number > 0.0 ? "inf" : "-inf";
}

Json ValueJson(const FieldValue& value) {
  if (const auto* number = std::get_if<double>(&value)) return NumberJson(*number);
  return std::visit([](const auto& held) { return Json(held); }, value);
}

Json FieldsJson(const Form& form) {
  Json fields = Json::object();
  for (const FormField& field : form.fields) fields[field.name] = ValueJson(field.value);
  return fields;
}

}  // namespace

Transcript::Transcript(FrontEnd& inner, const std::string& path)
    : ForwardingFrontEnd(inner), file_(path, std::ios::binary | std::ios::trunc) {}

std::optional<std::vector<std::string>> Transcript::ChooseFiles(const FileChooser& chooser) {
  auto paths = ForwardingFrontEnd::ChooseFiles(chooser);
  WriteChoice(chooser, paths ? Json(*paths) : Json());
  return paths;
}

std::optional<double> Transcript::AskValue(const std::string& title, double shown) {
  const auto value = ForwardingFrontEnd::AskValue(title, shown);
  Write({{"event", "value-input"},
         {"title", title},
         {"shown", NumberJson(shown)},
         {"answer", value ? NumberJson(*value) : Json()}});
  return value;
}

bool Transcript::AskForm(Form& form) {
  const Json shown = FieldsJson(form);
  const bool accepted = ForwardingFrontEnd::AskForm(form);
  Write({{"event", "form"},
         {"form", form.name},
         {"title", form.title},
         {"shown", shown},
         {"answer", accepted ? FieldsJson(form) : Json()}});
  return accepted;
}

bool Transcript::ShowMessage(MessageKind kind, MessageButtons buttons, const std::string& text) {
  Write({{"event", "message"},
         {"kind", MessageKindName(kind)},
         {"buttons", buttons == MessageButtons::Ok ? "ok" : "ok-cancel"},
         {"text", text}});
  return ForwardingFrontEnd::ShowMessage(kind, buttons, text);
}

void Transcript::SetStatusText(int pane, const std::string& text) {
  Write({{"event", "status"}, {"pane", pane}, {"text", text}});
  ForwardingFrontEnd::SetStatusText(pane, text);
}

void Transcript::SetWaitCursor(bool on) {
  const bool wasOn = waitDepth_ > 0;
  waitDepth_ += on ? 1 : -1;
  if (wasOn != (waitDepth_ > 0)) Write({{"event", "wait-cursor"}, {"on", on}});
  ForwardingFrontEnd::SetWaitCursor(on);
}

void Transcript::Print(const std::string& text) {
  Write({{"event", "print"}, {"stream", "output"}, {"text", text}});
  ForwardingFrontEnd::Print(text);
}

void Transcript::Trace(const std::string& text) {
  Write({{"event", "print"}, {"stream", "trace"}, {"text", text}});
  ForwardingFrontEnd::Trace(text);
}

void Transcript::OpenWindow(WindowView& view) {
  const PixelSize size = view.GetScrollSize();
  Write({{"event", "window"},
         {"kind", WindowKindName(view.GetKind())},
         {"title", view.GetTitle()},
         {"width", size.width},
         {"height", size.height}});
  ForwardingFrontEnd::OpenWindow(view);
}

void Transcript::CommandStarted(const std::string& name) {
  Write({{"event", "command"}, {"name", name}, {"phase", "start"}});
  ForwardingFrontEnd::CommandStarted(name);
}

void Transcript::CommandEnded(const std::string& name, CommandResult result) {
  Write({{"event", "command"}, {"name", name}, {"phase", "end"}, {"result", CommandResultName(result)}});
  ForwardingFrontEnd::CommandEnded(name, result);
}

void Transcript::FileGiven(const FileChooser& chooser, const std::string& path) {
  WriteChoice(chooser, Json::array({path}));
  ForwardingFrontEnd::FileGiven(chooser, path);
}

void Transcript::Write(const Json& event) {
  file_ << event.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n' << std::flush;
}

void Transcript::WriteChoice(const FileChooser& chooser, const Json& answer) {
  Write({{"event", "choose-file"},
         {"mode", chooser.mode == FileChooser::Mode::Open ? "open" : "save"},
         {"title", chooser.title},
         {"filter", chooser.filter},
         {"defaultExtension", chooser.defaultExtension},
         {"defaultName", chooser.defaultName},
         {"mustExist", chooser.mustExist},
         {"multiple", chooser.multiple},
         {"answer", answer}});
}

}  // namespace corvane
