#include "CommandLine.h"

#include <cstring>
#include <fmt/format.h>
#include <optional>

#include "CommandGate.h"
#include "Diagnosis.h"
#include "Log.h"
#include "NrProcess.h"
#include "Output.h"
#include "Parser.h"
#include "Trace.h"

namespace {

void openLog(const std::string& name) {
    if (name == "stderr")
        return Log::toStandardError();
    if (name == "syslog")
        return Log::toSyslog("nrmpio");
    if (const int error = Log::toFile(name))
        throw Failure(fmt::format("cannot write the log {}: {}", name, std::strerror(error)));
}

void apply(const Settings& settings) {
    if (settings.log)
        openLog(*settings.log);
    Log::setLevel(settings.debugLevel.value_or(settings.log ? Log::DefaultLevel : 0));
    NrProcess::setTimeLimit(settings.timeLimit);
}

/** The library runs kpartx -a of its own accord where a partition mapping has no node: not for a question. */
CommandGate::Mode mode(const Request& request) {
    const bool question = request.command->group == Command::Group::look && !request.arguments.kpartx;
    return question || request.arguments.dryRun ? CommandGate::Mode::rehearse : CommandGate::Mode::run;
}

ExitStatus runCommand(const Request& request) {
    apply(request.settings);
    const Plugin plugin(request.settings.plugin ? std::filesystem::path(*request.settings.plugin)
                                                : Plugin::defaultFile());
    CommandGate gate(mode(request));
    std::optional<Trace> trace;
    if (request.settings.trace)
        trace.emplace(gate);
    Arguments arguments = request.arguments;
    for (DeviceName& device : arguments.devices)
        device = device.resolved();
    const ExitStatus status = request.command->run(Library(plugin), arguments);
    finishOutput();
    return status;
}

ExitStatus run(const Request& request) {
    try {
        return runCommand(request);
    } catch (const Failure& failure) {
        throw Failure(explained(failure.what()));
    }
}

ExitStatus interpret(int argc, const char* const* argv) {
    const auto parsed = parse(argc, argv);
    if (const auto* request = std::get_if<Request>(&parsed))
        return run(*request);
    print(std::get<Help>(parsed));
    finishOutput();
    return ExitStatus::success;
}

} // namespace

ExitStatus runCommandLine(int argc, const char* const* argv) {
    try {
        return interpret(argc, argv);
    } catch (const UsageError& error) {
        tell(error.what());
        return ExitStatus::usage;
    } catch (const std::bad_alloc&) {
        tell("out of memory");
    } catch (const std::exception& failure) {
        tell(failure.what());
    }
    return ExitStatus::failure;
}
