// nrmpio-sim: runs a command in a world where a multipath stack seems to exist.
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <optional>
#include <system_error>

#include <getopt.h>
#include <unistd.h>

#include "builtin_scenarios.h"
#include "child_process.h"
#include "redirect.h"
#include "scenario.h"
#include "text_file.h"
#include "world_builder.h"

namespace sim {

namespace {

namespace fs = std::filesystem;

constexpr int WrongUsage = 64;    // EX_USAGE
constexpr int WrongScenario = 65; // EX_DATAERR
constexpr int CannotBuild = 71;   // EX_OSERR
constexpr int CannotPrint = 74;   // EX_IOERR
constexpr char Preload[] = "libnrmpio-sim-preload.so";
constexpr char Tool[] = "nrmpio-sim-tool";

constexpr char Help[] =
    R"(Runs a command in a world of its own, in which a multipath stack seems to exist.

Usage: nrmpio-sim [--scenario FILE] [--keep DIR] [--] COMMAND [ARGUMENT...]
       nrmpio-sim --state DIR [--] COMMAND [ARGUMENT...]
       nrmpio-sim --check FILE
       nrmpio-sim --list

Options:
  -s, --scenario FILE  the world as this TOML file describes it, or a built-in one by its name
  -k, --keep DIR       make the world in DIR, which must be new or empty, and leave it there
  -t, --state DIR      go on in the world that --keep left in DIR
  -c, --check FILE     tell whether the scenario is right; a mistake is told with line and key
  -l, --list           list the built-in scenarios
  -h, --help           this text

In the world, multipath, dmsetup and kpartx work on simulated disks, whose nodes are in /dev and
/dev/mapper and whose content can be read and written; simctl does to them what happens to
hardware (paths fail, go and come back). Nothing outside changes, no privilege is
needed, and the world is gone when the command ends.

Examples:
  nrmpio-sim -- multipath -ll                          see the maps
  nrmpio-sim -- nrmpio show                            the same through the plug-in
  nrmpio-sim -- bash                                   play
  nrmpio-sim -- sh -c 'sleep 5 < /dev/mapper/mpatha2 & sleep 1; multipath -f mpatha'
                                                       a flush that fails: a partition is open
  nrmpio-sim --keep world -- dmsetup remove lin1      look at the state afterwards
  nrmpio-sim --scenario san.toml -- nrmpio list        a world of your own

Exit status: that of the command, 128 + n when signal n ended it, 127 when it could not be started,
64 for wrong usage, 65 for a mistake in the scenario, 71 when the world could not be made, 74 when
the output could not be written.
)";

constexpr char Hint[] =
    "You are in a simulated multipath world; exit leaves it. Try: multipath -ll, dmsetup table,\n"
    "ls -l /dev/mapper, kpartx -d /dev/mapper/mpatha, multipath -f mpatha, multipath, simctl\n";

struct Options {
    std::string scenario = "default";
    std::optional<std::string> keep;
    std::optional<std::string> state;
    std::optional<std::string> check;
    bool list = false;
    bool help = false;
    std::vector<std::string> command;
};

/// Nothing when the usage is wrong; the reason is then on standard error.
std::optional<Options> parse(int count, char** values) {
    const option forms[] = {{"scenario", required_argument, nullptr, 's'},
                            {"keep", required_argument, nullptr, 'k'},
                            {"state", required_argument, nullptr, 't'},
                            {"check", required_argument, nullptr, 'c'},
                            {"list", no_argument, nullptr, 'l'},
                            {"help", no_argument, nullptr, 'h'},
                            {nullptr, 0, nullptr, 0}};
    Options options;
    for (int letter; (letter = ::getopt_long(count, values, "+s:k:t:c:lh", forms, nullptr)) != -1;) {
        switch (letter) {
        case 's':
            options.scenario = optarg;
            break;
        case 'k':
            options.keep = optarg;
            break;
        case 't':
            options.state = optarg;
            break;
        case 'c':
            options.check = optarg;
            break;
        case 'l':
            options.list = true;
            break;
        case 'h':
            options.help = true;
            break;
        default:
            return std::nullopt;
        }
    }
    options.command.assign(values + optind, values + count);
    if (options.command.empty() && !options.list && !options.help && !options.check) {
        std::cerr << "nrmpio-sim: which command shall run in the world?\n";
        return std::nullopt;
    }
    if (options.state && (options.keep || options.scenario != Options().scenario)) {
        std::cerr
            << "nrmpio-sim: --state goes on in a world that is there, so it takes no --scenario or --keep\n";
        return std::nullopt;
    }
    return options;
}

// ---- what belongs to the program

/// The directory with the tools and the preload library: beside the program, or where they are installed.
fs::path privateDirectory(const fs::path& programDirectory) {
    for (const fs::path& directory : {programDirectory, programDirectory / NRMPIO_SIM_PRIVATE_DIR})
        if (fs::exists(directory / Tool) && fs::exists(directory / Preload))
            return fs::canonical(directory);
    throw WorldError("cannot find " + std::string(Tool) + " and " + Preload + ": install nrmpio-sim anew");
}

Scenario loadScenario(const std::string& name) {
    for (const BuiltinScenario& builtin : BuiltinScenarios)
        if (builtin.name == name)
            return parseScenario(builtin.text, builtin.name + ".toml");
    const auto text = fs::is_regular_file(name) ? readFile(name) : std::nullopt;
    if (!text)
        throw ScenarioError(name + ": no such scenario file, nor a built-in scenario (see --list).");
    return parseScenario(*text, name);
}

// ---- the place of the world

/// A directory that is gone when the program ends, unless it shall be kept.
class WorldDirectory {
public:
    WorldDirectory(const std::optional<std::string>& keep, const std::optional<std::string>& state)
        : kept_(keep || state) {
        if (state)
            useEarlier(*state);
        else if (keep)
            useEmpty(*keep);
        else
            makePrivate();
    }
    WorldDirectory(const WorldDirectory&) = delete;
    WorldDirectory& operator=(const WorldDirectory&) = delete;
    ~WorldDirectory() {
        // What still runs in the world may add a file while the others go, so more than once.
        std::error_code error;
        for (int attempt = 0; !kept_ && attempt < 5; ++attempt)
            if (fs::remove_all(path_, error); !error)
                return;
    }
    std::string path() const { return path_.string(); }

private:
    void useEmpty(const std::string& directory) {
        fs::create_directories(directory);
        if (!fs::is_empty(directory))
            throw WorldError(directory + ": not empty; name a new directory to keep the world in");
        path_ = fs::canonical(directory);
    }
    void useEarlier(const std::string& directory) {
        for (const char* part : {"lock", "block", "names", "sys/dev/block"})
            if (!fs::exists(fs::path(directory) / part))
                throw WorldError(directory + ": no world of nrmpio-sim; make one with --keep");
        path_ = fs::canonical(directory);
    }
    /// In $TMPDIR; without one in memory, where making thousands of small files takes no time.
    static fs::path place() {
        const bool chosen = std::getenv("TMPDIR") != nullptr;
        return !chosen && ::access("/dev/shm", W_OK | X_OK) == 0 ? "/dev/shm" : fs::temp_directory_path();
    }
    void makePrivate() {
        std::string name = (place() / "nrmpio-sim-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            throwErrno(name);
        path_ = fs::canonical(name);
    }

    bool kept_;
    fs::path path_;
};

// ---- the command

std::string variable(const char* name, const std::string& otherwise = "") {
    const char* value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : otherwise;
}

/// Puts something first into a list of the environment.
void prepend(const char* name, const std::string& first, const std::string& list) {
    ::setenv(name, (list.empty() ? first : first + ":" + list).c_str(), 1);
}

std::vector<std::string> worldEnvironment(const std::string& world, const fs::path& program,
                                          const fs::path& preload) {
    ::setenv(WorldVariable, world.c_str(), 1);
    prepend("PATH", world + "/bin:" + program.string(), variable("PATH", "/usr/local/bin:/usr/bin:/bin"));
    prepend("LD_PRELOAD", preload.string(), variable("LD_PRELOAD"));
    // A program built with the address sanitizer refuses to start when another library is loaded first.
    prepend("ASAN_OPTIONS", "verify_asan_link_order=0", variable("ASAN_OPTIONS"));
    std::vector<std::string> environment;
    for (char** entry = environ; *entry != nullptr; ++entry)
        environment.emplace_back(*entry);
    return environment;
}

bool isInteractiveShell(const std::vector<std::string>& command) {
    const std::string name = fs::path(command.front()).filename().string();
    return command.size() == 1 && ::isatty(STDIN_FILENO) == 1 &&
           (name == "sh" || name == "dash" || name == "bash" || name == "zsh" || name == "fish");
}

/// A signal came while the world was made.
struct Interrupted {
    int signal;
};

/// The prompt of a shell says where one is, whatever the shell's own settings make of it.
void markPrompt() {
    ::setenv("PS1", ("(simulated) " + variable("PS1", "$ ")).c_str(), 1);
    const std::string mark = "case $PS1 in '(simulated) '*) ;; *) PS1=\"(simulated) $PS1\";; esac";
    const std::string own = variable("PROMPT_COMMAND");
    ::setenv("PROMPT_COMMAND", (own.empty() ? mark : own + "; " + mark).c_str(), 1);
}

void makeWorld(const Scenario& scenario, const WorldDirectory& world, const fs::path& tool,
               const HeldSignals& signals) {
    buildWorld(scenario, world.path(), tool.string(), [&signals] {
        if (const int signal = signals.pending())
            throw Interrupted{signal};
    });
}

/// The tools of an earlier world, which another build may have made.
void relinkTools(const std::string& world, const fs::path& tool) {
    for (const std::string& name : listDirectory(world + "/bin"))
        makeLink(tool.string(), world + "/bin/" + name);
}

int runInWorld(const Options& options) {
    const HeldSignals signals;
    const fs::path program = fs::read_symlink("/proc/self/exe").parent_path();
    const fs::path directory = privateDirectory(program);
    const Scenario scenario = options.state ? Scenario() : loadScenario(options.scenario);
    const WorldDirectory world(options.keep, options.state);
    if (options.state)
        relinkTools(world.path(), directory / Tool);
    else
        makeWorld(scenario, world, directory / Tool, signals);
    if (const int signal = signals.pending())
        return 128 + signal;
    if (isInteractiveShell(options.command)) {
        std::cerr << Hint;
        markPrompt();
    }
    std::string error;
    const int status =
        signals.run(options.command, worldEnvironment(world.path(), program, directory / Preload), error);
    if (!error.empty())
        std::cerr << "nrmpio-sim: " << error << "\n";
    return status;
}

/// "1 unit", "2 units".
std::string counted(size_t count, const std::string& thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

/// Makes the world and takes it away: what a disk or a table cannot be shows only then.
int check(const std::string& file) {
    const HeldSignals signals;
    const fs::path program = fs::read_symlink("/proc/self/exe").parent_path();
    const Scenario scenario = loadScenario(file);
    const WorldDirectory world(std::nullopt, std::nullopt);
    makeWorld(scenario, world, privateDirectory(program) / Tool, signals);
    std::cout << file << ": no mistake; " << counted(scenario.luns.size(), "unit") << ", "
              << counted(scenario.disks.size(), "other disk") << ", "
              << counted(scenario.linears.size(), "linear device") << ", "
              << counted(scenario.faults.size() + scenario.deviceFaults.size(), "fault") << ".\n";
    return 0;
}

int run(int count, char** values) {
    const auto options = parse(count, values);
    if (!options) {
        std::cerr << "nrmpio-sim --help tells how it is used.\n";
        return WrongUsage;
    }
    if (options->help)
        std::cout << Help;
    else if (options->check)
        return check(*options->check);
    else if (options->list)
        for (const BuiltinScenario& builtin : BuiltinScenarios)
            std::cout << builtin.name << "  " << builtin.title << "\n";
    else
        return runInWorld(*options);
    return 0;
}

} // namespace
} // namespace sim

int main(int count, char** values) {
    try {
        const int status = sim::run(count, values);
        errno = 0;
        if (std::cout.flush())
            return status;
        std::cerr << "nrmpio-sim: cannot write to standard output: " << std::strerror(errno) << "\n";
        return sim::CannotPrint;
    } catch (const sim::Interrupted& interrupted) {
        return 128 + interrupted.signal;
    } catch (const sim::ScenarioError& error) {
        std::cerr << "nrmpio-sim: " << error.what() << "\n";
        return sim::WrongScenario;
    } catch (const std::exception& error) {
        std::cerr << "nrmpio-sim: " << error.what() << "\n";
        return sim::CannotBuild;
    }
}
