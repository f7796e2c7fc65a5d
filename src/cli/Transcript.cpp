#include "cli/Transcript.h"

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "io/NumberText.h"

namespace corvane {

namespace {

using Json = nlohmann::ordered_json;

Json NumberJson(double number) {
  if (std::isfinite(number)) return number;
  if (std::isnan(number)) return "nan";
  return number > 0.0 ? "inf" : "-inf";
}

// The number with the fewest digits that is the same one in single precision.
double ShortestFloat(double number) {
  return ParseReal(ShortestText(static_cast<float>(number))).value_or(number);
}

Json ValueJson(const FormField& field) {
  if (const auto* number = std::get_if<double>(&field.value)) {
    return NumberJson(field.type == FieldType::Float ? ShortestFloat(*number) : *number);
  }
  return std::visit([](const auto& held) { return Json(held); }, field.value);
}

Json FieldsJson(const Form& form) {
  Json fields = Json::object();
  for (const FormField& field : form.fields) fields[field.name] = ValueJson(field);
  return fields;
}

// "#ff0000" of red.
std::string ColourText(Colour colour) {
  char text[8];
  std::snprintf(text, sizeof text, "#%02x%02x%02x", colour.red, colour.green, colour.blue);
  return text;
}

// Asks a prompt and writes it with its answer. A session that the prompt stops has cancelled it.
template <typename Ask, typename Write>
auto AskAndWrite(const Ask& ask, const Write& write) {
  decltype(ask()) answer{};
  try {
    answer = ask();
  } catch (...) {
    write(answer);
    throw;
  }
  write(answer);
  return answer;
}

}  // namespace

Transcript::Transcript(FrontEnd& inner, const std::string& path)
    : ForwardingFrontEnd(inner), file_(path, std::ios::binary | std::ios::trunc) {}

std::optional<std::vector<std::string>> Transcript::ChooseFiles(const FileChooser& chooser) {
  return AskAndWrite([&] { return ForwardingFrontEnd::ChooseFiles(chooser); },
                     [&](const auto& paths) { WriteChoice(chooser, paths ? Json(*paths) : Json()); });
}

std::optional<double> Transcript::AskValue(const std::string& title, double shown) {
  return AskAndWrite([&] { return ForwardingFrontEnd::AskValue(title, shown); },
                     [&](const auto& value) {
                       Write({{"event", "value-input"},
                              {"title", title},
                              {"shown", NumberJson(shown)},
                              {"answer", value ? NumberJson(*value) : Json()}});
                     });
}

bool Transcript::AskForm(Form& form) {
  const Json shown = FieldsJson(form);
  return AskAndWrite([&] { return ForwardingFrontEnd::AskForm(form); },
                     [&](bool accepted) {
                       Write({{"event", "form"},
                              {"form", form.name},
                              {"title", form.title},
                              {"shown", shown},
                              {"answer", accepted ? FieldsJson(form) : Json()}});
                     });
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
  WriteWindow(view.GetKind(), view.GetTitle(), view.GetScrollSize());
  ForwardingFrontEnd::OpenWindow(view);
}

void Transcript::ShowOverlay(WindowView& view, const OverlayCounts& counts) {
  Write({{"event", "overlay"},
         {"title", view.GetTitle()},
         {"points", counts.points},
         {"polylines", counts.polylines},
         {"labels", counts.labels}});
  ForwardingFrontEnd::ShowOverlay(view, counts);
}

void Transcript::CloseWindow(WindowView& view) {
  graphs_.erase(&view);
  ForwardingFrontEnd::CloseWindow(view);
}

bool Transcript::ShowGraph(WindowView& view, const GraphView& graph) {
  if (!ForwardingFrontEnd::ShowGraph(view, graph)) return false;
  if (graphs_.insert(&view).second) WriteWindow(WindowKind::Graph, graph.GetTitle(), graph.GetSize());
  return true;
}

void Transcript::PlotGraph(const GraphView& graph, int element) {
  const auto elements = graph.GetElements();
  if (element >= 0 && static_cast<std::size_t>(element) < elements.size()) {
    const GraphElement& plotted = elements[static_cast<std::size_t>(element)];
    Write({{"event", "plot"},
           {"element", element},
           {"count", plotted.points.size()},
           {"colour", ColourText(plotted.colour)},
           {"width", plotted.width}});
  }
  ForwardingFrontEnd::PlotGraph(graph, element);
}

void Transcript::OpenLog(const LogView& log) {
  WriteWindow(WindowKind::Log, log.GetTitle(), kLogWindowSize);
  ForwardingFrontEnd::OpenLog(log);
}

void Transcript::AppendToLog(const LogView& log, const std::string& text) {
  Write({{"event", "print"}, {"stream", "log"}, {"text", text}});
  ForwardingFrontEnd::AppendToLog(log, text);
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

void Transcript::WriteWindow(WindowKind kind, const std::string& title, PixelSize size) {
  Write({{"event", "window"},
         {"kind", WindowKindName(kind)},
         {"title", title},
         {"width", size.width},
         {"height", size.height}});
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
