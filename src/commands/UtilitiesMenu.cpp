#include "commands/UtilitiesMenu.h"

#include "TIN/PointsHeader.h"
#include "TIN/TINPoints.h"
#include "commands/Choosers.h"
#include "commands/MatchingRun.h"
#include "forms/ExtentInput.h"
#include "forms/ValueInput.h"
#include "shell/CommandShapes.h"

namespace corvane {

namespace {

const FileChooser kOpenText{.filter = "Text Files (*.txt)|*.txt|All Files (*.*)|*.*|",
                            .defaultExtension = "TXT",
                            .defaultName = "*.txt"};
const FileChooser kSaveBinary{.mode = FileChooser::Mode::Save,
                              .filter = "Binary Points Files (*.pts)|*.pts|All Files (*.*)|*.*|",
                              .defaultExtension = "BIN",
                              .defaultName = "*.pts"};

// Asks until the value is above 0. Kept: Cancel does not end the loop, it keeps the last value entered.
double AskSpacing(const ValueInput& prompt) {
  ValueInput input = prompt;
  do {
    input.Ask();
  } while (!(input.value > 0.0));
  return input.value;
}

using Converter = int (*)(const std::string& txtPath, const std::string& binPath, double spacing);

CommandResult ConvertText(const ValueInput& spacingPrompt, Converter convert) {
  const auto paths = ChooseInOrder({kOpenText, kSaveBinary});
  if (!paths) return CommandResult::Cancelled;
  const double spacing = AskSpacing(spacingPrompt);
  WaitCursor wait;
  if (convert((*paths)[0], (*paths)[1], spacing) >= 0) return CommandResult::Done;
  wait.End();
  ShowMessage("Failed to convert text file to binary");
  return CommandResult::Failed;
}

}  // namespace

CommandResult OnTextPointsXyzToBin(CCorvaneView&) {
  ValueInput spacing;
  spacing.title = "Please input the cell size";
  return ConvertText(spacing, &TINPoints::TextToBinary);
}

CommandResult OnTextPointsIdxyzToBin(CCorvaneView&) {
  return ConvertText(ValueInput(), &TINPoints::TextIdToBinary);
}

CommandResult OnPointsHead(CCorvaneView&) {
  const auto path = ChooseFile(kOpenPoints);
  if (!path) return CommandResult::Cancelled;
  auto header = PointsHeader::ReadForUpdate(*path);
  if (!header) {
    Ui().ShowMessage(MessageKind::Message, MessageButtons::OkCancel, OpenErrorText(*path));
    return CommandResult::Failed;
  }

  ExtentInput input;
  const double extent4[4] = {header->minX, header->maxX, header->minY, header->maxY};
  ExtentWindow ignored;
  auto cellSize = static_cast<float>(header->spacingX);
  if (input.Ask(extent4, ignored, &cellSize) < 0) return CommandResult::Cancelled;

  header->spacingX = cellSize;
  header->spacingY = cellSize;
  if (header->Update(*path)) return CommandResult::Done;
  ShowMessage(WriteErrorText(*path));
  return CommandResult::Failed;
}

CommandResult OnSpaceIntersection(CCorvaneView& view) {
  return RunMatching(view, &StereoPair::IntersectPairFile);
}

// The routine on trial reads match pairs, from a file that few have.
CommandResult OnTest(CCorvaneView&) {
  constexpr const char* kPath = "matchPt.txt";
  std::vector<MatchPair> pairs;
  if (StereoPair::ReadPairs(kPath, pairs) > 0) {
    Ui().SetStatusText(0, std::string(kPath) + ": " + std::to_string(pairs.size()) + " pairs.");
  }
  return CommandResult::Done;
}

}  // namespace corvane
