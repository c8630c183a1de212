/* What the calls cost without their commands.
 *
 * Usage: AloneBenchmark                 times everything; lines for bench/report
 *        AloneBenchmark --list          the names of the calls
 *        AloneBenchmark --count NAME    makes one call in measuredCall(), for an instruction counter,
 *                                       and prints how often it allocated memory
 */
#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <regex.h>
#include <sstream>

#include "Calls.h"
#include "Floor.h"
#include "LoadedPlugin.h"
#include "MTokenizer.h"

/** The name is what an instruction counter is told to look for. */
extern "C" __attribute__((noinline)) void measuredCall(const Call& call) {
    call.run();
}

namespace {

volatile char sink;

/** Stands in a world for as long as it lives. */
class Within {
public:
    explicit Within(instant::World inhabited) : world(std::move(inhabited)) { instant::enter(world); }

private:
    const instant::World world;
};

long allocationsOf(const std::function<void()>& run) {
    run(); // what is only made once is not the call's
    const long before = instant::allocations();
    run();
    return instant::allocations() - before;
}

/** Own time against as many of the smallest command there is, started barely. */
void tellOwnTime(const Call& call) {
    const Within world(call.world());
    const long before = instant::commandsRun();
    call.run();
    const auto commands = static_cast<double>(instant::commandsRun() - before);
    const double ratio = ratioOf(
        call.run,
        [] {
            std::string out, err;
            runBare("true", out, err);
        },
        21);
    tell("alone", call.name + " against its " + std::to_string(static_cast<long>(commands)) + " commands",
         ratio / commands);
}

/** Copies the names and pads the buffers byte by byte, as the compiler makes of it. */
void copyNames(const std::vector<std::string>& names, std::vector<char>& buffers) {
    char* buffer = buffers.data();
    for (const std::string& name : names) {
        char* end = std::copy(name.begin(), name.end(), buffer);
        std::fill(end, buffer + MAXMPIOPATHLEN, '\0');
        buffer += MAXMPIOPATHLEN;
    }
    sink = buffers.back();
}

void tellNames() {
    constexpr std::size_t count = 10000;
    const Within world(mapsWorld(count, 10));
    std::vector<std::string> names;
    std::istringstream listing(mapsWorld(count, 10).maps);
    for (std::string name; std::getline(listing, name);)
        names.push_back("/dev/mapper/" + name);
    std::vector<char> buffers(count * MAXMPIOPATHLEN);
    tell("names", "10,000 names against copying them and padding the buffers",
         ratioOf([] { callMaps(count); }, [&] { copyNames(names, buffers); }, 101), 1.5);
}

/** A pattern, and a search of every line for it. */
class Search {
public:
    explicit Search(const char* pattern) {
        require(regcomp(&expression, pattern, REG_EXTENDED) == 0, "no pattern");
    }
    ~Search() { regfree(&expression); }
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    void searchAll(const std::vector<std::string>& lines) const {
        regmatch_t whole;
        for (const std::string& line : lines)
            sink = static_cast<char>(regexec(&expression, line.c_str(), 1, &whole, 0));
    }

private:
    regex_t expression;
};

void readLines(const std::string& file) {
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);)
        sink = line.empty() ? '\0' : line.front();
}

/** A call that finds nothing, so that every line is looked at. */
void tellPartitionsTable(const std::string& what, const std::vector<std::string>& lines, double limit) {
    instant::World table;
    for (const std::string& line : lines)
        table.partitions += line + '\n';
    const Within world(std::move(table));
    const auto lookUp = [] { sink = SCSI_NAME(7, 4711).empty() ? 'n' : 'y'; };
    const Search disk("sd[a-z]+");
    tell("table line", what + " against searching it for sd[a-z]+",
         ratioOf(
             lookUp, [&] { disk.searchAll(lines); }, 51),
         limit);
    tell("table line", what + " against reading it with getline",
         ratioOf(
             lookUp, [] { readLines("/proc/partitions"); }, 51));
}

void tellPartitionsTables() {
    std::vector<std::string> disks, others;
    for (std::size_t i = 0; i < 10000; ++i) {
        disks.push_back(diskLine(i));
        others.push_back(" 253  " + std::to_string(1000000 + i) + "  976762584 dm-" + std::to_string(i));
    }
    tellPartitionsTable("a disk's line", disks, 1.3);
    tellPartitionsTable("a line that cannot match", others, 1.3);
}

/** The time of the walk by n log n, against that of the smallest: flat is n log n. */
void tellWalk() {
    constexpr std::size_t smallest = 256;
    constexpr std::size_t largest = 16384;
    const auto smallWorld = mappingsWorld(smallest, 0);
    const auto work = [](std::size_t n) { return static_cast<double>(n) * std::log2(n); };
    for (std::size_t n = smallest; n <= largest; n *= 2) {
        const auto world = mappingsWorld(n, 0);
        std::vector<double> ratios;
        for (int i = 0; i < 15; ++i) {
            const auto repeat = static_cast<int>(largest / n);
            instant::enter(world);
            const double own = timeOf([&] {
                for (int j = 0; j < repeat; ++j)
                    callPartitionDevices(n);
            });
            instant::enter(smallWorld);
            constexpr std::size_t turns = largest / smallest;
            const double base = timeOf([&] {
                for (std::size_t j = 0; j < turns; ++j)
                    callPartitionDevices(smallest);
            });
            ratios.push_back(own / (repeat * work(n)) /
                             (base / (static_cast<double>(turns) * work(smallest))));
        }
        tell("walk by n log n", std::to_string(n), median(ratios), n == largest ? 1.5 : 0);
    }
}

/** The time for a byte, at 256 times the length. */
void tellTokenizer() {
    std::string text;
    while (text.size() < 65536)
        text += "mpatha" + std::to_string(text.size()) + '\n';
    std::string longText;
    for (int i = 0; i < 64; ++i)
        longText += text;
    const auto tokens = [](const std::string& input) {
        sink = static_cast<char>(tokenize(input, '\r', true).size());
    };
    tell("tokenizer", "a byte of 4 MiB against a byte of 64 KiB",
         ratioOf([&] { tokens(longText); },
                 [&] {
                     for (int i = 0; i < 64; ++i)
                         tokens(text);
                 },
                 21),
         1.2);
    const std::string word(4 << 20, 'x');
    tell("tokenizer", "a byte of one token against a byte of many",
         ratioOf([&] { tokens(word); }, [&] { tokens(longText); }, 21), 1.2);
}

/** Names of 1,000 characters instead of 10: as many allocations, where none is made for a byte. */
void tellAllocations() {
    constexpr std::size_t count = 1000;
    const auto allocationsFor = [](std::size_t nameLength) {
        const Within world(mapsWorld(count, nameLength));
        return static_cast<double>(allocationsOf([] { callMaps(count); }));
    };
    tell("allocations", "names a hundred times as long against short ones",
         allocationsFor(1000) / allocationsFor(10), 2);
}

void countOne(const std::string& name) {
    for (const Call& call : calls())
        if (call.name == name) {
            const Within world(call.world());
            std::printf("%ld\n", allocationsOf(call.run));
            measuredCall(call);
            return;
        }
    require(false, "no call named " + name);
}

void timeEverything() {
    for (const Call& call : calls())
        tellOwnTime(call);
    tellNames();
    tellPartitionsTables();
    tellWalk();
    tellTokenizer();
    tellAllocations();
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--count") == 0)
        countOne(argv[2]);
    else if (argc == 2 && std::strcmp(argv[1], "--list") == 0)
        for (const Call& call : calls())
            std::printf("%s\n", call.name.c_str());
    else
        timeEverything();
}
