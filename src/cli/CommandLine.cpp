#include "cli/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <new>

#include "cli/CommandList.h"
#include "cli/ScriptFile.h"
#include "io/InputFile.h"

namespace corvane {

namespace {

constexpr const char* kDescription =
    "Corvane's commands without a display: laser points and aerial photos in, terrain models out.";

constexpr const char* kFooter = R"(Examples:
  corvane-cli list
  corvane-cli run "Text Points(XYZ) to Bin" survey.txt survey.pts 1.0
  corvane-cli run "TIN > Create TIN" survey.pts survey.tin
  corvane-cli run --open survey.tin --pictures pictures "File > Save As" copy.tin
  corvane-cli script --transcript day.jsonl day.txt
"corvane-cli run --help" tells how answers are given.

Exit status: 0 done, 1 failed, 2 cancelled at a prompt, 3 answers and prompts did not fit,
4 command disabled, 64 wrong usage.)";

constexpr const char* kRunFooter =
    R"(COMMAND is the text of a menu item, with or without the menu path before it. Options stand before it;
everything after it is an answer. Each prompt of the command takes the next one:
  a file chooser   a path; several as "a.tin|b.tin" where several can be chosen
  a number         the number
  a form           "field=value;field=value"; fields that are not named stay as shown, "" changes none;
                   a value in double quotes may hold semicolons
  any prompt       @cancel cancels it, @ok accepts what it shows
Without answers, the command names the first prompt that needs one.)";

constexpr const char* kScriptFooter =
    R"(One command a line, then its answers, separated by blanks. Text in double quotes keeps its blanks,
\" and \\ within quotes stand for " and \. Empty lines and lines that begin with # are skipped.
  "TIN > Create TIN" survey.pts survey.tin
  "File > Open" survey.tin
The whole script is read before its first command runs.)";

// Shows how a call is written: the parser itself knows no COMMAND, so that it takes no answer for an option.
class UsageFormatter : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App* app, std::string) const override {
    const std::string name = app->get_name();
    if (name == "run") return "Usage: corvane-cli run [OPTION...] COMMAND [ANSWER...]\n";
    if (name == "script") return "Usage: corvane-cli script [OPTION...] FILE\n";
    if (name == "list") return "Usage: corvane-cli list [--json]\n";
    return "Usage: corvane-cli run|script|list ...\n";
  }
};

// What is wrong with a call, and where help is.
std::string FailureText(const CLI::App* parser, const CLI::Error& error) {
  const auto chosen = parser->get_subcommands();
  const auto extras = parser->remaining();
  if (chosen.empty() && !extras.empty()) {
    return "corvane-cli: run, script or list is wanted, not " + ShownText(extras.front()) +
           "; \"corvane-cli --help\" tells more.\n";
  }
  const std::string name = chosen.empty() ? "" : chosen.front()->get_name() + ' ';
  return std::string("corvane-cli: ") + error.what() + "; \"corvane-cli " + name + "--help\" tells more.\n";
}

std::string RefuseEmpty(const std::string& value) {
  return value.empty() ? "the name is empty" : "";
}

// The parser's options, and where it puts what it reads.
struct Call {
  CLI::App parser{kDescription, "corvane-cli"};
  CLI::App* run = nullptr;
  CLI::App* script = nullptr;
  CLI::App* list = nullptr;
  SessionOptions options;
  std::string scriptFile;
  bool json = false;
  std::vector<std::string> unparsed;  // of run: "--" and what follows it

  Call() {
    parser.set_version_flag("--version", "corvane-cli 1.0");
    parser.formatter(std::make_shared<UsageFormatter>());
    parser.require_subcommand(0, 1);
    parser.footer(kFooter);
    parser.failure_message(FailureText);
    run = parser.add_subcommand("run", "Runs one command");
    run->footer(kRunFooter);
    run->prefix_command();  // whatever follows COMMAND is an answer, "-10" and "--x" too
    AddSessionOptions(*run);
    script = parser.add_subcommand("script", "Runs the commands of a file in one session");
    script->footer(kScriptFooter);
    AddSessionOptions(*script);
    script->add_option("FILE", scriptFile, "The script; - reads standard input")
        ->required()
        ->option_text(" ");
    list = parser.add_subcommand("list", "Lists every row of the menus: path, item, prompt");
    list->add_flag("--json", json, "As a JSON array");
  }

  void AddSessionOptions(CLI::App& command) {
    command.add_option("--open", options.openFile, "Open this document first")
        ->type_name("FILE.tin")
        ->check(RefuseEmpty, "");
    command
        .add_option("--transcript", options.transcriptFile,
                    "Write the session's events, one JSON object a line")
        ->type_name("FILE")
        ->check(RefuseEmpty, "");
    command
        .add_option("--pictures", options.picturesFolder,
                    "Save the open windows as PNG files after each command")
        ->type_name("DIR")
        ->check(RefuseEmpty, "");
    command.add_flag("--trace", options.trace, "The debug stream goes to standard error");
    command.add_flag("--quiet", options.quiet, "No status texts on standard error");
    command.add_flag("--keep-going", options.keepGoing,
                     "A script goes on after a command that did not end well");
  }
};

ExitStatus RunSingle(const Call& call, std::span<const CommandRow> rows, Console& console) {
  std::vector<std::string> words = call.run->remaining();
  if (!words.empty() && words.front().starts_with('-')) {
    console.ErrorLine("corvane-cli: run has no option " + ShownText(words.front()) +
                      "; \"corvane-cli run --help\" tells more.");
    return ExitStatus::Usage;
  }
  // A "--" before COMMAND only ends the options, behind it it is an answer.
  const bool endsOptions = words.empty() && !call.unparsed.empty();
  words.insert(words.end(), call.unparsed.begin() + (endsOptions ? 1 : 0), call.unparsed.end());
  if (words.empty()) {
    console.ErrorLine("corvane-cli: run needs a COMMAND; \"corvane-cli list\" names them.");
    return ExitStatus::Usage;
  }
  const ScriptCommand command = {1, words.front(), {words.begin() + 1, words.end()}};
  return Session(rows, call.options, console).Run({command}, "");
}

ExitStatus RunScript(const Call& call, std::span<const CommandRow> rows, std::istream& in, Console& console) {
  std::optional<std::string> text;
  if (call.scriptFile == "-") {
    text.emplace(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  } else {
    text = ReadWholeFile(call.scriptFile);
  }
  if (!text) {
    console.ErrorLine("corvane-cli: the script " + call.scriptFile + " can't be read.");
    return ExitStatus::Usage;
  }
  const std::string name = call.scriptFile == "-" ? "standard input" : call.scriptFile;
  const Script script = ParseScript(*text);
  if (!script.error.empty()) {
    console.ErrorLine("corvane-cli: " + name + ":" + std::to_string(script.errorLine) + ": " + script.error);
    return ExitStatus::Usage;
  }
  return Session(rows, call.options, console).Run(script.commands, name);
}

ExitStatus RunCall(std::vector<std::string> arguments, std::span<const CommandRow> rows,
                   StandardStreams streams, Console& console) {
  Call call;
  if (!arguments.empty() && arguments.front() == "run") {  // the parser would read "--" for itself
    const auto mark = std::find(arguments.begin(), arguments.end(), "--");
    call.unparsed.assign(mark, arguments.end());
    arguments.erase(mark, arguments.end());
  }
  std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
  try {
    call.parser.parse(arguments);
  } catch (const CLI::ParseError& error) {
    return call.parser.exit(error, streams.out, streams.err) == 0 ? ExitStatus::Done : ExitStatus::Usage;
  }

  if (call.parser.get_subcommands().empty()) {
    console.ErrorText(call.parser.help());
    return ExitStatus::Usage;
  }
  if (*call.run) return RunSingle(call, rows, console);
  if (*call.script) return RunScript(call, rows, streams.in, console);
  console.Print(call.json ? CommandListJson(rows) : CommandListText(rows));
  return ExitStatus::Done;
}

}  // namespace

ExitStatus RunCommandLine(const std::vector<std::string>& arguments, std::span<const CommandRow> rows,
                          StandardStreams streams) {
  Console console(streams.out, streams.err, streams.errIsTerminal, streams.outIsTerminal);
  ExitStatus status = ExitStatus::Failed;
  try {
    status = RunCall(arguments, rows, streams, console);
  } catch (const std::bad_alloc&) {
    console.ErrorLine("corvane-cli: out of memory");
  }
  if (!streams.out.flush()) {
    console.ErrorLine("corvane-cli: standard output can't be written.");
    if (status == ExitStatus::Done) status = ExitStatus::Failed;
  }
  return status;
}

}  // namespace corvane
