// acg doctor: the command, and the steps that both systems share.
#include "tool/Doctor.h"

#include "abi/ACGReader330.h"
#include "acg/encoder/Failures.h"
#include "acg/platform/LibraryFile.h"
#include "tool/Card.h"
#include "tool/CommandLine.h"
#include "tool/Failures.h"
#include "tool/System.h"
#include "tool/Text.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>

namespace acg::tool
{

namespace
{

/// Reports the failure of a step. remedy: unless the record's number has one of its own.
void ReportFailed(DoctorReport& report, const DoctorStep& step, const CError& record,
                  const DoctorText& remedy, const std::string& settings = "")
{
    std::string detail = Format("%d ", record.Number) + ToUtf8(record.Description) + report.In(texts::In) +
                         ToUtf8(record.RdrCommand);
    if (record.LastDllError != 0) {
        detail += report.In(texts::SystemError) + std::to_string(record.LastDllError);
    }
    if (!settings.empty()) {
        detail += " (" + settings + ')';
    }
    report.Failed(step, detail,
                  record.Number > 0                        ? texts::Take
                  : record.Number == NoEncoderFound.Number ? texts::Cable
                                                           : remedy);
}

/// False: the library isn't loaded.
bool CheckLibrary(DoctorReport& report, const DoctorLibrary& library)
{
    if (!library.Problem.empty()) {
        report.Failed(steps::Library, library.Problem, library.Remedy);
        return false;
    }
    if (!library.LookUp(ReaderFunction()).LibraryLoaded) {
        report.Failed(steps::Library, report.In(texts::NotIn) + library.Searched,
                      report.In(texts::PutLibrary) + library.FirstFolder);
        return false;
    }
    const LoadedLibrary loaded = LibraryInUse(library.LookUp);
    std::string detail = loaded.Path.empty() ? library.File : loaded.Path;
    for (const std::string& about : {loaded.Description, loaded.Version}) {
        detail += about.empty() ? "" : ", " + about;
    }
    if (loaded.Description == "Simulated reader library") { // simulator/CMakeLists.txt
        detail += report.In(texts::Simulated);
    }
    report.Passed(steps::Library, detail);
    return true;
}

void CheckFunctions(DoctorReport& report, const EntryPointLookUp& lookUp)
{
    std::string missing;
    for (int at = 0; at < ReaderFunctionCount; ++at) {
        const auto function = static_cast<ReaderFunction>(at);
        missing += lookUp(function).Address == nullptr ? std::string(" ") + NameOf(function) : "";
    }
    if (missing.empty()) {
        report.Passed(steps::Functions);
    } else {
        report.Failed(steps::Functions, report.In(texts::Lacks) + missing, texts::Take);
    }
}

/// False: the reader isn't open.
bool CheckOpening(DoctorReport& report, Encoder& encoder)
{
    const std::string settings = SettingsOf(encoder);
    try {
        Open(encoder);
        report.Passed(steps::Opening, settings);
        return true;
    } catch (const CardFailure& failure) {
        ReportFailed(report, steps::Opening, failure.Record, texts::Device, settings);
        return false;
    }
}

void CheckReader(DoctorReport& report, Encoder& encoder)
{
    try {
        const std::string type = TypeOf(encoder);
        if (type.empty()) {
            report.Failed(steps::Type, report.In(texts::NoType), texts::Switch);
        } else {
            report.Passed(steps::Type, type);
        }
    } catch (const CardFailure& failure) {
        ReportFailed(report, steps::Type, failure.Record, texts::Switch);
    }
    std::wstring serial;
    const std::optional<CError> failure = FailureOf(encoder, encoder.ReadSerialNumber(serial));
    if (!failure) {
        report.Passed(steps::Card, ToUtf8(serial));
    } else if (failure->Number == NoCardInEncoder.Number) {
        report.Unknown({steps::Card}, report.In(texts::NoCard));
    } else {
        ReportFailed(report, steps::Card, *failure, texts::OneCard);
    }
}

struct Options {
    std::string Language;
    std::string Host;
};

int Doctor(const Options& options, Context& context)
{
    if (!options.Language.empty() && options.Language != "en" && options.Language != "fr") {
        throw UsageError{"--lang is en or fr"};
    }
    DoctorLibrary library;
    const std::unique_ptr<Encoder> encoder =
        MakeEncoder(context.Reader.Parameters, CardWait::None,
                    ReaderDLL([&library](ReaderFunction function) { return library.LookUp(function); }));
    DoctorReport report(context.Out, (options.Language.empty() ? UserLanguage() : options.Language) == "fr");
    library = CheckInstallation(report, options.Host);
    if (context.Reader.IsSimulated) {
        library = {.LookUp = LookUpOf(context.Reader)};
    }
    if (CheckLibrary(report, library)) {
        CheckFunctions(report, library.LookUp);
        if (CheckOpening(report, *encoder)) {
            CheckReader(report, *encoder);
        } else {
            report.Unknown({steps::Type, steps::Card});
        }
    } else {
        report.Unknown({steps::Functions, steps::Opening, steps::Type, steps::Card});
    }
    context.Out.Json["ok"] = !report.HasFailed();
    const std::string page = Utf8Of(OwnFolder()) + report.In(texts::Page);
    std::error_code error;
    if (report.HasFailed() && std::filesystem::exists(ToPath(page), error)) {
        report.Remark(report.In(texts::More) + page);
    }
    return report.HasFailed() ? Failed : Done;
}

} // namespace

void AddDoctor(CommandLine& commands)
{
    auto [command, options] =
        commands.Add("doctor", "Checks the installation step by step, and says how to mend what fails",
                     "acg doctor --reader \"Device=com3;Baud rate=19200\"", Doctor);
    command.Option("--lang", "LANGUAGE", options.Language, "en or fr; default: the user's language");
    command.Option(
        "--host", "PATH", options.Host,
        "On Windows: a program that uses the component, or its folder, to check the manifest that it has in "
        "place of registration");
}

} // namespace acg::tool
