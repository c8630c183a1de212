/* What the runner costs on top of a bare posix_spawn, in a small host and in a large one. */
#include "NrProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

using Clock = std::chrono::steady_clock;

void require(bool condition, const char* what) {
    if (!condition)
        throw std::runtime_error(what);
}

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

/** Takes in what is there; false at the end. */
bool take(int fd, std::string& text) {
    char buffer[32768];
    const ssize_t got = read(fd, buffer, sizeof buffer);
    if (got > 0)
        text.append(buffer, static_cast<size_t>(got));
    return got > 0;
}

/** The floor: the least that gets both outputs and the status of a shell command. No promises. */
int runBare(const char* command, std::string& out, std::string& err) {
    int outPipe[2], errPipe[2];
    require(pipe2(outPipe, O_CLOEXEC) == 0 && pipe2(errPipe, O_CLOEXEC) == 0, "no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, outPipe[1], 1);
    posix_spawn_file_actions_adddup2(&actions, errPipe[1], 2);
    const char* const arguments[] = {"sh", "-c", command, nullptr};
    pid_t pid = -1;
    require(posix_spawn(&pid, "/bin/sh", &actions, nullptr, const_cast<char* const*>(arguments), environ) ==
                0,
            "no process");
    posix_spawn_file_actions_destroy(&actions);
    close(outPipe[1]);
    close(errPipe[1]);
    pollfd events[] = {{outPipe[0], POLLIN, 0}, {errPipe[0], POLLIN, 0}};
    std::string* const texts[] = {&out, &err};
    while (events[0].fd >= 0 || events[1].fd >= 0) {
        poll(events, 2, -1);
        for (size_t i = 0; i < 2; ++i)
            if (events[i].revents && !take(events[i].fd, *texts[i]))
                events[i].fd = -1;
    }
    close(outPipe[0]);
    close(errPipe[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    return status;
}

int runRunner(const char* command, std::string& out, std::string& err) {
    return NrProcess::system(command, &out, &err, 0, true);
}

/** In microseconds. */
template <typename Runner>
double timeOf(Runner run, const char* command) {
    std::string out, err;
    const auto start = Clock::now();
    const int status = run(command, out, err);
    const auto end = Clock::now();
    require(status == 0 && err.empty(), "the command failed");
    benchmark::DoNotOptimize(out);
    return std::chrono::duration<double, std::micro>(end - start).count();
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/** Both ways in turns, so that whatever else the machine does falls on both. */
void compare(benchmark::State& state, const char* command, size_t hostMiB, void (*treatSigchld)(int)) {
    const HostMemory memory(hostMiB << 20);
    signal(SIGCHLD, treatSigchld);
    std::vector<double> bare, runner;
    for (auto _ : state) {
        const bool bareFirst = bare.size() % 2 == 0;
        if (bareFirst)
            bare.push_back(timeOf(runBare, command));
        runner.push_back(timeOf(runRunner, command));
        if (!bareFirst)
            bare.push_back(timeOf(runBare, command));
        state.SetIterationTime(runner.back() / 1e6);
    }
    signal(SIGCHLD, SIG_DFL);
    state.counters["bare_us"] = median(bare);
    state.counters["runner_us"] = median(runner);
    state.counters["ratio"] = median(runner) / median(bare);
}

void add(const std::string& name, const char* command, size_t hostMiB, void (*treatSigchld)(int) = SIG_DFL) {
    benchmark::RegisterBenchmark(name.c_str(), compare, command, hostMiB, treatSigchld)
        ->Iterations(200)
        ->Repetitions(9)
        ->ReportAggregatesOnly()
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

} // namespace

int main(int argc, char** argv) {
    setenv("LC_ALL", "C", 1); // for the floor, too: the tools start faster with it
    for (const size_t hostMiB : {10, 4096}) {
        const std::string host = " in a host of " + std::to_string(hostMiB) + " MiB";
        add("smallest command" + host, "true", hostMiB);
        add("pipeline" + host, "ls / | head -n 3", hostMiB);
        add("10 MiB of output" + host, "head -c 10485760 /dev/zero", hostMiB);
        add("smallest command, SIGCHLD ignored," + host, "true", hostMiB, SIG_IGN);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    printf("ratio: NrProcess::system by the floor, both medians of alternating runs in one process.\n"
           "The floor is a bare posix_spawn of /bin/sh -c on the same command in the same environment, with\n"
           "two pipes read to their end by poll, and waitpid; it keeps none of the runner's promises.\n"
           "The aim is 1.2 at most, whatever the host's size. Where SIGCHLD is ignored there is no aim: the\n"
           "floor then loses the status, and the runner starts a second shell that reports it.\n");
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
