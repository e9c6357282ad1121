#include "tests/simulation/explorer/fitting_sentences.h"

#include <algorithm>
#include <string>

#include "tests/simulation/explorer/tree.h"

namespace vorthmere::update::simulation {
namespace {

constexpr std::string_view kNoStart = "Windows could not initialize SHA-256 verification.";
constexpr std::string_view kNotFinished = "Windows could not finish SHA-256 verification.";
constexpr std::string_view kNotCaptured = "Unable to capture the archive tool output.";
constexpr std::string_view kNotInspected = "Unable to inspect the extracted update.";

constexpr std::string_view kPackage = "C:/Games/Kelvane/.kvn-update/package.zip";
constexpr std::string_view kNoTool =
    "This Windows installation does not provide tar.exe. Windows 10 version 1803 or newer is required.";

constexpr FittingSentence kSentences[] = {
    {Operation::createToWrite, L"", kPackage, 15, "Unable to create the temporary update archive."},
    {Operation::writeBytes, L"", kPackage, 15, "Unable to store the downloaded update."},
    {Operation::closeFile, L"", kPackage, 15, "Unable to finish the temporary update archive."},
    {Operation::copyFile, timetable::copyingLocalPackage.text, "", 16, "Unable to stage the local update package."},
    {Operation::openSha256, timetable::verifyingPackage.text, "", 18, kNoStart},
    {Operation::digestMemorySize, timetable::verifyingPackage.text, "", 18, kNoStart},
    {Operation::beginDigest, timetable::verifyingPackage.text, "", 18,
     "Windows could not create the SHA-256 verifier."},
    {Operation::openToRead, timetable::verifyingPackage.text, "", 18, "Unable to read the downloaded update archive."},
    {Operation::digestBytes, timetable::verifyingPackage.text, "", 18, "Windows could not hash the update archive."},
    {Operation::readBytes, timetable::verifyingPackage.text, "", 18, kNotFinished},
    {Operation::finishDigest, timetable::verifyingPackage.text, "", 18, kNotFinished},
    {Operation::systemFolder, timetable::verifyingPackage.text, "", 19, "Unable to locate the Windows archive tool."},
    {Operation::entryFacts, timetable::verifyingPackage.text, "C:/Windows/System32", 20, kNoTool},
    {Operation::openPipe, timetable::inspectingPackage.text, "", 21, kNotCaptured},
    {Operation::openPipe, timetable::unpackingPackage.text, "", 22, kNotCaptured},
    {Operation::listFolder, timetable::unpackingPackage.text, place::kStaging, 24, kNotInspected},
    {Operation::listFolder, timetable::changedFilesVerified.text, place::kStaging, 24, kNotInspected},
    {Operation::openProcess, timetable::waitingForGame.text, "", 26, "Unable to wait for the running game to close."},
    {Operation::waitForEnd, timetable::waitingForGame.text, "", 26, "The game did not close within two minutes."},
    {Operation::moveFile, timetable::installing.text, place::kStaging, 27, "Unable to install an updated game file."},
    {Operation::moveFile, timetable::installing.text, place::kInstallation, 27,
     "Unable to back up the current installation."},
};

std::wstring_view stepOf(const Outcome& outcome, const Call& call) {
    std::wstring_view step;
    for (const ReportedStep& reported : outcome.steps)
        if (reported.firstCall <= call.number) step = reported.text;
    return step;
}

}  // namespace

const FittingSentence* fittingSentenceOf(const Outcome& outcome) {
    const Plan& plan = outcome.scenario.plan;
    const auto* fault = plan.size() == 1 ? std::get_if<Fault>(&plan.front().action) : nullptr;
    const Setting& setting = *outcome.scenario.setting;
    const bool isInstallable = !setting.isDrawn && undisturbedCode(setting.way) != 27;
    if (fault == nullptr || fault->error == 0 || fault->always || !isInstallable) return nullptr;
    const auto harmed =
        std::find_if(outcome.calls.begin(), outcome.calls.end(), [](const Call& call) { return call.isHarmed; });
    if (harmed == outcome.calls.end()) return nullptr;
    const std::wstring_view step = stepOf(outcome, *harmed);
    const auto found = std::find_if(std::begin(kSentences), std::end(kSentences), [&](const FittingSentence& fitting) {
        return fitting.operation == harmed->operation && (fitting.step.empty() || fitting.step == step) &&
               (fitting.below.empty() || isAtOrBelow(treeKeyOf(harmed->subject), treeKeyOf(fitting.below)));
    });
    return found == std::end(kSentences) ? nullptr : found;
}

}  // namespace vorthmere::update::simulation
