#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <fmt/format.h>
#include <sstream>

#include "CommandGate.h"
#include "Commands.h"
#include "Log.h"
#include "Output.h"

namespace {

struct Request {
    std::optional<std::string> plugin;
    bool trace = false;
    Arguments arguments;
    const Command* command = nullptr;
};

int deviceNumber(const char* what, const std::string& text) {
    int number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number < 0)
        throw UsageError(
            fmt::format("the {} number {} is no decimal number from 0 to 2147483647", what, text));
    return number;
}

void addOperands(CLI::App& app, Command::Operands operands, Arguments& arguments) {
    const auto add = [&app](const char* name, const char* help, auto store) {
        app.add_option_function<std::string>(name, store, help)->required()->type_name("");
    };
    switch (operands) {
    case Command::Operands::none:
        break;
    case Command::Operands::device:
        add("DEVICE", "Path of the device's node, or the name of a map or mapping",
            [&](const std::string& text) { arguments.devices = {DeviceName(text).asPath()}; });
        break;
    case Command::Operands::deviceNumber:
        add("MAJOR", "Major device number",
            [&](const std::string& text) { arguments.major = deviceNumber("major", text); });
        add("MINOR", "Minor device number",
            [&](const std::string& text) { arguments.minor = deviceNumber("minor", text); });
        break;
    }
}

void addCommand(CLI::App& app, const Command& command, Request& request) {
    CLI::App* sub = app.add_subcommand(command.name, command.summary);
    sub->group("Commands");
    sub->footer(command.details);
    sub->fallthrough(); // the global options may follow the command
    sub->callback([&command, &request] { request.command = &command; });
    addOperands(*sub, command.operands, request.arguments);
    if (std::string_view(command.name) == "partitions")
        sub->add_flag("--kpartx", request.arguments.kpartx,
                      "Have kpartx create the mappings that are missing first; they stay");
}

void describe(CLI::App& app, Request& request) {
    app.name("nrmpio");
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.set_version_flag("--version", "nrmpio " NRMPIO_VERSION);
    app.add_option("--plugin", request.plugin, "The plug-in to use; default: the one that belongs to nrmpio")
        ->type_name("PATH");
    app.add_flag("--trace", request.trace, "Tell on standard error each command that the plug-in runs");
    app.require_subcommand(1);
    app.footer("Exit status: 0 success or yes, 1 no, 2 failure, 64 wrong usage.\n\n"
               "Example: nrmpio show");
    for (const Command& command : commands)
        addCommand(app, command, request);
}

ExitStatus run(const Request& request) {
    if (request.plugin && request.plugin->empty())
        throw UsageError("--plugin needs a path");
    Log::setLevel(request.trace ? Log::DefaultLevel + 1 : 0);
    const Plugin plugin(request.plugin ? std::filesystem::path(*request.plugin) : Plugin::defaultFile());
    const CommandGate gate(request.arguments.dryRun ? CommandGate::Mode::rehearse : CommandGate::Mode::run);
    const ExitStatus status = request.command->run(Library(plugin), request.arguments);
    finishOutput();
    return status;
}

std::string whatIsWrong(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_name() != "RequiredError" || !app.get_subcommands().empty())
        return error.what();
    return app.remaining_size() == 0 ? "a command is required"
                                     : app.remaining().front() + " is no command and no option";
}

ExitStatus interpret(int argc, const char* const* argv) {
    CLI::App app("Asks about multipath devices and manages them, by way of a multipath I/O plug-in.");
    Request request;
    describe(app, request);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        std::ostringstream text;
        app.exit(help, text, text);
        print(text.str());
        finishOutput();
        return ExitStatus::success;
    } catch (const CLI::ParseError& error) {
        throw UsageError(fmt::format("{}; nrmpio --help tells more", whatIsWrong(app, error)));
    }
    return run(request);
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
