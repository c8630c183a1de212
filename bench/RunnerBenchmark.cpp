/* What the runner costs on top of a bare posix_spawn, in a small host and in a large one. */
#include "NrProcess.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

#include <benchmark/benchmark.h>

#include "Floor.h"

namespace {

/** Memory of the host's own, every page of it touched. */
class HostMemory {
public:
    explicit HostMemory(size_t bytes) : bytes_(bytes) {
        require(start_ != MAP_FAILED, "no memory for a host of this size");
        madvise(start_, bytes_, MADV_NOHUGEPAGE); // as many pages to copy as there can be
        constexpr size_t PageSize = 4096;
        for (size_t offset = 0; offset < bytes_; offset += PageSize)
            static_cast<char*>(start_)[offset] = 1;
    }
    ~HostMemory() { munmap(start_, bytes_); }
    HostMemory(const HostMemory&) = delete;
    HostMemory& operator=(const HostMemory&) = delete;

private:
    size_t bytes_;
    void* start_ = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
};

/** Whether the machine has the memory, and half as much for the rest. */
bool fits(size_t hostMiB) {
    const auto pages = static_cast<size_t>(sysconf(_SC_PHYS_PAGES));
    return pages / 256 >= hostMiB + hostMiB / 2; // a page has 4 KiB
}

int runRunner(const char* command, std::string& out, std::string& err) {
    return NrProcess::system(command, &out, &err, 0, true);
}

/** In microseconds. */
template <typename Runner>
double microsecondsOf(Runner run, const char* command) {
    std::string out, err;
    int status = -1;
    const double seconds = timeOf([&] { status = run(command, out, err); });
    require(status == 0 && err.empty(), "the command failed");
    benchmark::DoNotOptimize(out);
    return seconds * 1e6;
}

/** Both ways in turns, so that whatever else the machine does falls on both. */
void compare(benchmark::State& state, const char* command, size_t hostMiB, void (*treatSigchld)(int)) {
    if (!fits(hostMiB))
        return state.SkipWithError("this machine has no memory for a host of this size");
    const HostMemory memory(hostMiB << 20);
    signal(SIGCHLD, treatSigchld);
    std::vector<double> bare, runner;
    for (auto _ : state) {
        const bool bareFirst = bare.size() % 2 == 0;
        if (bareFirst)
            bare.push_back(microsecondsOf(runBare, command));
        runner.push_back(microsecondsOf(runRunner, command));
        if (!bareFirst)
            bare.push_back(microsecondsOf(runBare, command));
        state.SetIterationTime(runner.back() / 1e6);
    }
    signal(SIGCHLD, SIG_DFL);
    state.counters["bare_us"] = median(bare);
    state.counters["runner_us"] = median(runner);
    state.counters["ratio"] = median(runner) / median(bare);
}

/** The smallest command in a large host against that in a small one, in turns. */
void compareHosts(benchmark::State& state) {
    if (!fits(4096))
        return state.SkipWithError("this machine has no memory for a host of this size");
    const auto runIn = [](size_t hostMiB) {
        const HostMemory memory(hostMiB << 20);
        std::vector<double> times;
        for (int i = 0; i < 200; ++i)
            times.push_back(microsecondsOf(runRunner, "true"));
        return lowerQuartile(times);
    };
    std::vector<double> ratios;
    for (auto _ : state) {
        const double small = runIn(10);
        const double large = runIn(4096);
        ratios.push_back(large / small);
        state.SetIterationTime(large / 1e6);
    }
    state.counters["ratio"] = median(ratios);
}

void add(const std::string& name, const char* command, size_t hostMiB, void (*treatSigchld)(int) = SIG_DFL) {
    benchmark::RegisterBenchmark(name.c_str(), compare, command, hostMiB, treatSigchld)
        ->Iterations(100)
        ->Repetitions(5)
        ->ReportAggregatesOnly()
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

} // namespace

int main(int argc, char** argv) {
    setenv("LC_ALL", "C", 1); // for the floor, too: the tools start faster with it
    for (const size_t hostMiB : {10U, 4096U}) {
        const std::string host = " in a host of " + std::to_string(hostMiB) + " MiB";
        add("smallest command" + host, "true", hostMiB);
        add("pipeline" + host, "ls / | head -n 3", hostMiB);
        add("10 MiB of output" + host, "head -c 10485760 /dev/zero", hostMiB);
        add("smallest command, SIGCHLD ignored," + host, "true", hostMiB, SIG_IGN);
    }
    benchmark::RegisterBenchmark("host of 4 GiB against one of 10 MiB", compareHosts)
        ->Iterations(5)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    printf("ratio: NrProcess::system by the floor, both medians of alternating runs in one process.\n"
           "The floor is a bare posix_spawn of /bin/sh -c on the same command in the same environment, with\n"
           "two pipes read to their end by poll, and waitpid; it keeps none of the runner's promises.\n"
           "The aim is 1.2 at most, whatever the host's size. Where SIGCHLD is ignored there is no aim: the\n"
           "floor then loses the status, and the runner starts a second shell that reports it.\n"
           "The last line has the runner in a large host against itself in a small one: 1.1 at most.\n");
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
