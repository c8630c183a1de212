#include "Parser.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <numeric>
#include <sstream>
#include <thread>

#include "Columns.h"

namespace {

constexpr int mostJobs = 256;
constexpr int longestRecheck = 3600;
constexpr int longestTimeLimit = 86400;

template <class Number>
bool readAll(const std::string& text, Number& number) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

int wholeNumber(const char* what, const std::string& text, int lowest, int highest) {
    int number = 0;
    if (!readAll(text, number) || number < lowest || number > highest)
        throw UsageError(
            fmt::format("{} {} is no decimal number from {} to {}", what, text, lowest, highest));
    return number;
}

/** In milliseconds, at least one. */
int timeLimit(const std::string& text) {
    double seconds = 0;
    if (!readAll(text, seconds) || !(seconds > 0 && seconds <= longestTimeLimit))
        throw UsageError(
            fmt::format("--timeout {} is no number of seconds above 0 and up to {}", text, longestTimeLimit));
    return static_cast<int>(std::ceil(seconds * 1000));
}

std::vector<std::string> columnNames(const std::string& list) {
    std::vector<std::string> names;
    std::istringstream text(list + ",");
    for (std::string name; std::getline(text, name, ',');) {
        if (name.empty())
            throw UsageError("--output needs the names of columns with commas between them");
        names.push_back(name);
    }
    return names;
}

unsigned processors() {
    return std::clamp(std::thread::hardware_concurrency(), 1U, static_cast<unsigned>(mostJobs));
}

/** An option or operand with one value. */
template <class Store>
CLI::Option* addValue(CLI::App& app, const char* name, const char* type, const std::string& help,
                      Store store) {
    return app.add_option_function<std::string>(name, store, help)->type_name(type);
}

void addDevices(CLI::App& app, Arguments& arguments) {
    const auto store = [&arguments](const CLI::results_t& names) {
        for (const std::string& name : names)
            arguments.devices.emplace_back(name);
        return true;
    };
    app.add_option("DEVICE", store,
                   "Paths of devices' nodes, or names of maps or mappings; default: all maps")
        ->type_name("")
        ->expected(1, CLI::detail::expected_max_vector_size)
        ->allow_extra_args();
}

void addOperands(CLI::App& app, Command::Operands operands, Arguments& arguments) {
    constexpr int most = std::numeric_limits<int>::max();
    switch (operands) {
    case Command::Operands::none:
        break;
    case Command::Operands::device:
        addValue(app, "DEVICE", "", "Path of the device's node, or the name of a map or mapping",
                 [&](const std::string& text) { arguments.devices = {DeviceName(text)}; })
            ->required();
        break;
    case Command::Operands::devices:
        addDevices(app, arguments);
        break;
    case Command::Operands::deviceNumber:
        addValue(app, "MAJOR", "", "Major device number", [&](const std::string& text) {
            arguments.major = wholeNumber("the major number", text, 0, most);
        })->required();
        addValue(app, "MINOR", "", "Minor device number", [&](const std::string& text) {
            arguments.minor = wholeNumber("the minor number", text, 0, most);
        })->required();
        break;
    }
}

/** The first format that is asked for is the only one. */
void addFormat(CLI::App& app, const char* name, ShowOptions::Format format, const char* help,
               ShowOptions& show) {
    app.add_flag_callback(
        name,
        [&show, format] {
            if (show.format != ShowOptions::Format::tree && show.format != format)
                throw UsageError("--json, --list, --pairs and --dot exclude one another");
            show.format = format;
        },
        help);
}

void addPresentation(CLI::App& app, ShowOptions& show) {
    using Format = ShowOptions::Format;
    addFormat(app, "--json", Format::json, "Print the answer as JSON", show);
    addFormat(app, "--list", Format::list, "Print a list, not a tree", show);
    addFormat(app, "--pairs", Format::pairs, "Print lines of COLUMN=\"value\" pairs, as a shell reads them",
              show);
    addFormat(app, "--dot", Format::dot, "Print a picture in the language of Graphviz", show);
    addValue(app, "-o,--output", "COLUMNS", "Print these columns only, with commas between their names",
             [&show](const std::string& list) { show.columns = columnNames(list); });
    app.add_flag_callback(
        "-n,--noheadings", [&show] { show.headings = false; }, "Print no headings");
    app.add_flag("-b,--bytes", show.bytes, "Print sizes in bytes");
    show.jobs = processors();
    addValue(app, "-j,--jobs", "N",
             "Ask about so many maps at the same time; default: one for each processor",
             [&show](const std::string& text) {
                 show.jobs = static_cast<unsigned>(wholeNumber("--jobs", text, 1, mostJobs));
             });
}

void addOptions(CLI::App& app, unsigned options, Arguments& arguments) {
    if (options & Command::kpartx)
        app.add_flag("--kpartx", arguments.kpartx,
                     "Have kpartx create the mappings that are missing first; they stay");
    if (options & Command::yes)
        app.add_flag("-y,--yes", arguments.yes,
                     "Do it without a question; needed where there is no terminal");
    if (options & Command::dryRun)
        app.add_flag("--dry-run", arguments.dryRun,
                     "Show the commands that would change something, run none");
    if (options & Command::recheck)
        addValue(app, "--recheck", "SECONDS",
                 fmt::format("Look again after so long whether it still holds; 0: do not; default: {}",
                             arguments.recheck),
                 [&arguments](const std::string& text) {
                     arguments.recheck = wholeNumber("--recheck", text, 0, longestRecheck);
                 });
    if (options & Command::presentation)
        addPresentation(app, arguments.show);
    else
        app.add_flag("--json", arguments.json, "Print the answer as JSON");
}

/** The words in lines that fit a terminal, all but the first indented by so many blanks. */
std::string wrapped(const std::string& text, std::size_t indentation) {
    constexpr std::size_t width = 100;
    std::istringstream words(text);
    std::string lines;
    std::size_t column = indentation;
    for (std::string word; words >> word; column += word.size() + 1) {
        if (column + word.size() > width) {
            lines.back() = '\n';
            lines.append(indentation, ' ');
            column = indentation;
        }
        lines += word + " ";
    }
    return lines.substr(0, lines.find_last_not_of(' ') + 1);
}

/** What follows the options in a command's help. */
std::string details(const Command& command) {
    std::string text = command.details;
    if (command.options & Command::presentation) {
        text += "\n\nColumns (* unless --output names others):\n";
        for (const ColumnInfo& column : showColumns())
            text += fmt::format(" {} {:<10}{}\n", column.usual ? '*' : ' ', column.heading,
                                wrapped(column.help, 13));
        text.pop_back();
    }
    return text + "\n\nOptions of all commands: see nrmpio --help";
}

void addCommand(CLI::App& app, const Command& command, Request& request) {
    CLI::App* sub = app.add_subcommand(command.name, command.summary);
    sub->group(command.group == Command::Group::look ? "Look" : "Change");
    sub->footer(details(command));
    sub->fallthrough(); // the global options may follow the command
    addOperands(*sub, command.operands, request.arguments);
    addOptions(*sub, command.options, request.arguments);
    sub->parse_complete_callback([&command, &request] { request.command = &command; });
}

void addSettings(CLI::App& app, Settings& settings) {
    const auto notEmpty = [](const char* option, const std::string& text) {
        if (text.empty())
            throw UsageError(fmt::format("{} is empty", option));
        return text;
    };
    addValue(app, "--plugin", "PATH", "The plug-in to use; default: the one that belongs to nrmpio",
             [&, notEmpty](const std::string& text) { settings.plugin = notEmpty("--plugin", text); });
    addValue(app, "--timeout", "SECONDS", "Let no command run longer; default: no limit",
             [&](const std::string& text) { settings.timeLimit = timeLimit(text); });
    app.add_flag("--trace", settings.trace,
                 "Tell on standard error each command that was run, its status and duration");
    addValue(app, "--log", "FILE", "Write the plug-in's log to a file, to stderr or to syslog",
             [&, notEmpty](const std::string& text) { settings.log = notEmpty("--log", text); });
    addValue(
        app, "--debug-level", "N", "How much the log tells, from 0 to 9; default: 5 with --log, otherwise 0",
        [&](const std::string& text) { settings.debugLevel = wholeNumber("--debug-level", text, 0, 9); });
}

void describe(CLI::App& app, Request& request) {
    app.name("nrmpio");
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.get_formatter()->label("REQUIRED", "");
    app.get_formatter()->column_width(24);
    app.set_version_flag("--version", "nrmpio " NRMPIO_VERSION, "Print the version");
    app.set_help_flag("-h,--help", "Print a help; after a command, that of the command");
    addSettings(app, request.settings);
    app.require_subcommand(1);
    app.footer("A DEVICE is the path of a node, such as /dev/mapper/mpatha, or a bare name.\n"
               "\n"
               "Exit status:\n"
               "  0         done, or yes\n"
               "  1         no\n"
               "  2         failed; standard error says why\n"
               "  64        wrong usage; nothing was run\n"
               "  130, 143  ended by SIGINT or SIGTERM\n"
               "\n"
               "Environment:\n"
               "  NO_COLOR  when not empty, no colours on a terminal, either\n"
               "\n"
               "Example: nrmpio show\n"
               "Example: nrmpio delete --dry-run /dev/mapper/mpatha\n"
               "\n"
               "See nrmpio COMMAND --help, and nrmpio(8).");
    for (const Command& command : commands)
        addCommand(app, command, request);
}

/** How many letters must be inserted, removed or replaced. */
std::size_t distance(const std::string& one, const std::string& other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const char letter : one) {
        std::size_t diagonal = row[0]++;
        for (std::size_t i = 0; i < other.size(); ++i) {
            const std::size_t replaced = diagonal + (other[i] == letter ? 0 : 1);
            diagonal = row[i + 1];
            row[i + 1] = std::min({replaced, row[i] + 1, row[i + 1] + 1});
        }
    }
    return row.back();
}

std::string nearestCommand(const std::string& typo) {
    const auto nearer = [&typo](const Command& one, const Command& other) {
        return distance(typo, one.name) < distance(typo, other.name);
    };
    const auto nearest = std::min_element(commands.begin(), commands.end(), nearer);
    return distance(typo, nearest->name) <= 2 ? fmt::format("; did you mean {}?", nearest->name) : "";
}

/** CLI11 complains about what is missing first; what is too much tells more. */
std::string whatIsWrong(const CLI::App& app, const CLI::ParseError& error) {
    const auto chosen = app.get_subcommands();
    const std::string name = chosen.empty() ? "nrmpio" : "nrmpio " + chosen.front()->get_name();
    const std::string more = "; " + name + " --help tells more";
    const auto extras = app.remaining(true);
    const auto extra =
        std::find_if(extras.begin(), extras.end(), [](const auto& word) { return word != "--"; });
    if (extra == extras.end())
        return (chosen.empty() && error.get_name() == "RequiredError" ? "a command is required"
                                                                      : std::string(error.what())) +
               more;
    if (extra->size() > 1 && extra->front() == '-')
        return fmt::format("{} has no option {}{}", name, *extra, more);
    if (!chosen.empty())
        return fmt::format("{} is one word too many{}", *extra, more);
    const std::string suggestion = nearestCommand(*extra);
    return *extra + " is no command" + (suggestion.empty() ? more : suggestion);
}

/** CLI11 takes one word "[a,b]" for two operands where there may be several; a device's name it cannot be. */
void refuseBrackets(int argc, const char* const* argv) {
    for (const std::string_view word : std::vector<std::string_view>(argv + 1, argv + argc))
        if (word.size() > 1 && word.front() == '[' && word.back() == ']')
            throw UsageError("a device name cannot contain [");
}

} // namespace

std::variant<Request, Help> parse(int argc, const char* const* argv) {
    CLI::App app("Looks at multipath devices and changes them, by way of a multipath I/O plug-in.");
    Request request;
    describe(app, request);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        std::ostringstream text;
        app.exit(help, text, text);
        return text.str();
    } catch (const CLI::ParseError& error) {
        throw UsageError(whatIsWrong(app, error));
    }
    if (request.command->operands == Command::Operands::devices)
        refuseBrackets(argc, argv);
    return request;
}
