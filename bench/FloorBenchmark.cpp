/* Every entry point on the simulator, against its own command lines run barely, and from several
 * threads. Run it as `nrmpio-sim -- FloorBenchmark`; it prints lines for bench/report. */
#include <cstdlib>
#include <functional>
#include <thread>

#include "Floor.h"
#include "LoadedPlugin.h"
#include "Log.h"
#include "NrProcess.h"

namespace {

struct Command {
    std::string line;
    bool failed;
};

/** The latest call's; a call and its commands are on one thread. */
thread_local std::vector<Command> recorded;

} // namespace

/** Stands before the runner, which does the work. */
int NrProcess::system(const char* command, std::string* out, std::string* err, int option, bool quiet) {
    static auto* const next = reinterpret_cast<decltype(&NrProcess::system)>(
        dlsym(dlopen(RUNNER_FILE, RTLD_NOW),
              "_ZN9NrProcess6systemEPKcPNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES8_ib"));
    const int status = next(command, out, err, option, quiet);
    recorded.push_back({command, status != 0});
    return status;
}

namespace {

constexpr char map[] = "/dev/mapper/mpatha";
constexpr char partition[] = "/dev/mapper/mpatha1";

/** What a host passes to a call. */
struct Host {
    int code = 0;
    char text[MAXMPIOERRORLEN] = "";
    int count = 8;
    std::vector<char> memory = std::vector<char>(std::size_t{8} * MAXMPIOPATHLEN);
    std::vector<char*> buffers;
    std::vector<NrPartInfo> records = std::vector<NrPartInfo>(8);

    Host() {
        for (std::size_t i = 0; i < 8; ++i)
            buffers.push_back(memory.data() + i * MAXMPIOPATHLEN);
    }
};

struct EntryPoint {
    const char* name;
    std::function<bool(Host&)> call;   /**< Whether it did what is measured. */
    const char* restoration = nullptr; /**< Puts back what it took away. */
};

constexpr char remakeMap[] = "multipath && kpartx -a /dev/mapper/mpatha";
constexpr char remakePartitions[] = "kpartx -a /dev/mapper/mpatha";

const EntryPoint entryPoints[] = {
    {"init", [](Host& h) { return ENTRY_POINT(init)(nullptr, &h.code, h.text) != nullptr; }},
    {"getMPIODevices",
     [](Host& h) {
         return ENTRY_POINT(getMPIODevices)(nullptr, h.buffers.data(), &h.count, &h.code, h.text) == 0;
     }},
    {"isMPIODevice of a map",
     [](Host& h) { return ENTRY_POINT(isMPIODevice)(nullptr, map, &h.code, h.text) == 1; }},
    {"isMPIODevice of a partition",
     [](Host& h) { return ENTRY_POINT(isMPIODevice)(nullptr, partition, &h.code, h.text) == 1; }},
    {"getUnderlyingDevices",
     [](Host& h) {
         return ENTRY_POINT(getUnderlyingDevices)(nullptr, map, h.buffers.data(), &h.count, &h.code,
                                                  h.text) == 0;
     }},
    {"isPartitionDevice",
     [](Host& h) {
         return ENTRY_POINT(isPartitionDevice)(nullptr, partition, h.buffers[0], nullptr, nullptr) == 1;
     }},
    {"getPartitionDevices",
     [](Host& h) {
         return ENTRY_POINT(getPartitionDevices)(nullptr, map, h.records.data(), &h.count, 0, &h.code,
                                                 h.text) == 3;
     }},
    {"refreshMPIO", [](Host& h) { return ENTRY_POINT(refreshMPIO)(nullptr, &h.code, h.text) == 0; }},
    {"setFailIfNoPathDevice",
     [](Host& h) { return ENTRY_POINT(setFailIfNoPathDevice)(nullptr, map, &h.code, h.text) == 0; }},
    {"deleteMPIODevicePartitions",
     [](Host& h) { return REMOVE_PARTITIONS(map, &h.code, h.text) == 0 && h.code == 0; }, remakePartitions},
    {"deleteMPIODevice",
     [](Host& h) { return ENTRY_POINT(deleteMPIODevice)(nullptr, map, &h.code, h.text) == 0; }, remakeMap},
};

void restore(const EntryPoint& entryPoint) {
    std::string out, err;
    if (entryPoint.restoration)
        require(runBare(entryPoint.restoration, out, err) == 0, err);
}

double timeOfCall(const EntryPoint& entryPoint, Host& host) {
    recorded.clear();
    host.count = 8;
    bool good = false;
    const double time = timeOf([&] { good = entryPoint.call(host); });
    require(good, std::string(entryPoint.name) + " did not do what is measured");
    restore(entryPoint);
    return time;
}

double timeOfFloor(const EntryPoint& entryPoint, const std::vector<Command>& commands) {
    bool same = true;
    const double time = timeOf([&] {
        for (const Command& command : commands) {
            std::string out, err;
            same = (runBare(command.line.c_str(), out, err) != 0) == command.failed && same;
        }
    });
    require(same, std::string(entryPoint.name) + ": a command ends differently on the floor");
    restore(entryPoint);
    return time;
}

/** Calls and floor in turns, for four seconds and for a hundred turns at least. */
void tellAgainstFloor(const EntryPoint& entryPoint) {
    Host host;
    timeOfCall(entryPoint, host); // warm, and the commands are known
    std::vector<double> calls, floors;
    const auto turn = [&] {
        const bool floorFirst = calls.size() % 2 == 0;
        if (floorFirst)
            floors.push_back(timeOfFloor(entryPoint, recorded));
        calls.push_back(timeOfCall(entryPoint, host));
        if (!floorFirst)
            floors.push_back(timeOfFloor(entryPoint, recorded));
    };
    for (double spent = 0; spent < 4 || calls.size() < 100;)
        spent += timeOf(turn);
    tell("floor", entryPoint.name, lowerQuartile(calls) / lowerQuartile(floors), 1.05);
}

/** Things done in a second by so many threads at once. */
double throughput(int threads, const std::function<void()>& once) {
    constexpr int each = 60;
    const double time = timeOf([&] {
        std::vector<std::thread> running;
        for (int i = 0; i < threads; ++i)
            running.emplace_back([&once] {
                for (int j = 0; j < each; ++j)
                    once();
            });
        for (std::thread& thread : running)
            thread.join();
    });
    return threads * each / time;
}

void callOnce() {
    Host host;
    recorded.clear();
    require(entryPoints[2].call(host), "no map");
}

/** Growth over one thread, of the calls and of their command run barely: no more is to be had. */
void tellThreads(const std::string& command) {
    const auto bare = [&command] {
        std::string out, err;
        runBare(command.c_str(), out, err);
    };
    for (const int threads : {1, 2, 4, 8}) {
        std::vector<double> calls, floors;
        for (int i = 0; i < 7; ++i) {
            calls.push_back(throughput(threads, callOnce) / throughput(1, callOnce));
            floors.push_back(throughput(threads, bare) / throughput(1, bare));
        }
        const std::string count = std::to_string(threads);
        tell("threads, calls", count, median(calls));
        tell("threads, floor", count, median(floors));
    }
}

} // namespace

int main() {
    Log::setLevel(0);
    setenv("LC_ALL", "C", 1); // for the floor, too: the tools start faster with it
    for (const EntryPoint& entryPoint : entryPoints)
        tellAgainstFloor(entryPoint);
    callOnce();
    tellThreads(recorded.front().line);
}
