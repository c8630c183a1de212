#include "EvDebug.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <cstdarg>
#include <set>
#include <thread>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include "CLogWriterInterface.h"
#include "Log.h"
#include "TemporaryDirectory.h"

namespace {
std::string syslogged;
}

// What the library hands to syslog comes here instead.
#pragma GCC visibility push(default)
extern "C" void vsyslog(int priority, const char* format, va_list arguments) {
    char text[1024];
    vsnprintf(text, sizeof text, format, arguments);
    syslogged = std::to_string(priority) + " " + text;
}
extern "C" void syslog(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vsyslog(priority, format, arguments);
    va_end(arguments);
}
extern "C" void __syslog_chk(int priority, int, const char* format, ...) { // NOLINT: the fortified form
    va_list arguments;
    va_start(arguments, format);
    vsyslog(priority, format, arguments);
    va_end(arguments);
}
#pragma GCC visibility pop

namespace {

const bool writerStoodBeforeMain = g_ptrLogWriter && g_ptrLogWriter->getDebugLevel() == Log::DefaultLevel;

struct OwnWriter : CLogWriterInterface {
    explicit OwnWriter(int level) : level_(level) {}
    int getDebugLevel() override {
        errno = EBUSY;
        return level_ < 100 ? level_ : throw level_;
    }
    int level_;
};

/** The log goes to a file in a directory of the test's own. */
class LogTest : public testing::Test {
protected:
    LogTest() {
        EXPECT_EQ(Log::toFile(path_), 0);
        Log::setLevel(Log::DefaultLevel);
    }
    ~LogTest() override {
        g_ptrLogWriter = writer_;
        Log::toStandardError();
    }

    template <typename... Values>
    void debug(const char* tag, const char* format, Values... values) {
        EvDebug(nullptr).Debug(tag, format, values...); // NOLINT: the format is what is tested
    }
    std::vector<std::string> lines() const { return linesOf(path_); }

    const TemporaryDirectory directory_;
    const std::string path_ = directory_.file("log");
    const boost::shared_ptr<CLogWriterInterface> writer_ = g_ptrLogWriter;
};

struct Record {
    int thread = -1;
    time_t time = -1;
    std::string rest; ///< tag and text
};

/** Takes a line apart; no thread where it does not begin as a record does. */
Record parse(const std::string& line) {
    Record record;
    tm utc{};
    int millisecond, length = 0;
    sscanf(line.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d.%3dZ [%d] %n", &utc.tm_year, &utc.tm_mon, &utc.tm_mday,
           &utc.tm_hour, &utc.tm_min, &utc.tm_sec, &millisecond, &record.thread, &length);
    if (length == 0)
        record.thread = -1;
    utc.tm_year -= 1900;
    utc.tm_mon -= 1;
    record.time = timegm(&utc);
    record.rest = line.substr(static_cast<size_t>(length));
    return record;
}

/** What stands after the time and the thread in a record of this thread. */
std::string tagAndText(const std::string& line) {
    const Record record = parse(line);
    return record.thread == gettid() ? record.rest : "not a record of this thread: " + line;
}

TEST_F(LogTest, RecordIsOneLineWhateverItHolds) {
    const std::string large(100000, 'x');
    const struct {
        std::string text, written;
    } cases[] = {
        {"", ""},
        {"a b\\c 100%", "a b\\c 100%"},
        {"line\n", "line\\n"},
        {"\ta\r\n\nb\x1b[0m\x7f", "\\ta\\r\\n\\nb\\x1b[0m\\x7f"},
        {"gr\xc3\xbc\xc3\x9f\x65 \xff", "gr\xc3\xbc\xc3\x9f\x65 \xff"},
        {std::string(511, 'e'), std::string(511, 'e')},
        {std::string(512, 'e'), std::string(512, 'e')},
        {large, large},
    };
    setenv("TZ", "EAST-7", 1);
    tzset();
    const time_t start = time(nullptr);
    for (const auto& c : cases)
        debug("tag", "%s", c.text.c_str());
    debug("two\nlines", "%d:%s", -6, "x");
    debug(nullptr, "x");
    const auto written = lines();
    ASSERT_EQ(written.size(), std::size(cases) + 2);
    for (size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(tagAndText(written[i]), "tag: " + cases[i].written);
    EXPECT_EQ(tagAndText(written[std::size(cases)]), "two\\nlines: -6:x");
    EXPECT_EQ(tagAndText(written.back()), "?: x");
    EXPECT_GE(parse(written[0]).time, start - 1); // time(2) is not as exact
    EXPECT_LE(parse(written[0]).time, time(nullptr));
}

TEST_F(LogTest, LevelDecidesAndIsTheHostsWritersWhereThereIsOne) {
    EXPECT_TRUE(writerStoodBeforeMain);
    const struct {
        int set, inForce;
        size_t records;
    } cases[] = {{-7, 0, 0}, {0, 0, 0}, {1, 1, 1}, {5, 5, 1}, {9, 9, 1}, {10, 9, 1}};
    for (const auto& c : cases) {
        Log::setLevel(c.set);
        EXPECT_EQ(g_ptrLogWriter->getDebugLevel(), c.inForce);
        ASSERT_EQ(truncate(path_.c_str(), 0), 0);
        debug("tag", "text");
        EXPECT_EQ(lines().size(), c.records) << c.set;

        ASSERT_EQ(truncate(path_.c_str(), 0), 0);
        g_ptrLogWriter = boost::make_shared<OwnWriter>(c.set);
        Log::setLevel(9 - c.inForce);
        debug("tag", "text");
        EXPECT_EQ(lines().size(), c.records) << c.set;
        g_ptrLogWriter = writer_;
    }
}

TEST_F(LogTest, LinesOfManyThreadsStayWhole) {
    constexpr int Threads = 16, Records = 300;
    const auto filling = [](int i) { return std::string(static_cast<size_t>(i * 17 % 6000), 'x'); };
    std::vector<std::thread> threads;
    for (int t = 0; t < Threads; ++t)
        threads.emplace_back([this, t, &filling] {
            for (int i = 0; i < Records; ++i)
                debug("thread", "%d.%d<%s>", t, i, filling(i).c_str());
        });
    for (int i = 0; i < 300; ++i)
        EXPECT_EQ(Log::toFile(path_), 0);
    for (auto& thread : threads)
        thread.join();
    std::set<std::pair<int, int>> seen;
    std::set<int> threadNumbers;
    for (const auto& line : lines()) {
        const Record record = parse(line);
        int thread = -1, number = -1, length = 0;
        sscanf(record.rest.c_str(), "thread: %d.%d<%n", &thread, &number, &length);
        EXPECT_EQ(record.rest.substr(static_cast<size_t>(length)), filling(number) + ">");
        seen.emplace(thread, number);
        threadNumbers.insert(record.thread);
    }
    EXPECT_EQ(threadNumbers.size(), static_cast<size_t>(Threads));
    EXPECT_EQ(seen.size(), static_cast<size_t>(Threads * Records));
}

TEST_F(LogTest, FileIsOpenedAnewAfterRotation) {
    debug("tag", "first");
    rename(path_.c_str(), (path_ + ".1").c_str());
    debug("tag", "second");
    unlink(path_.c_str());
    debug("tag", "third");
    ASSERT_EQ(linesOf(path_ + ".1").size(), 1U);
    ASSERT_EQ(lines().size(), 1U);
    EXPECT_EQ(tagAndText(lines()[0]), "tag: third");
}

TEST_F(LogTest, RelativePathHoldsAfterAChangeOfDirectory) {
    const std::string before = std::filesystem::current_path();
    std::filesystem::current_path(std::filesystem::path(path_).parent_path());
    EXPECT_EQ(Log::toFile("relative"), 0);
    std::filesystem::current_path("/");
    unlink(directory_.file("relative").c_str());
    debug("tag", "text");
    std::filesystem::current_path(before);
    EXPECT_EQ(linesOf(directory_.file("relative")).size(), 1U);
}

TEST_F(LogTest, FileThatCannotBeOpenedLeavesTheLogWhereItWas) {
    mkfifo(directory_.file("fifo").c_str(), 0600);
    EXPECT_EQ(Log::toFile(directory_.file("no/such/directory")), ENOENT);
    EXPECT_EQ(Log::toFile(directory_.file("")), EISDIR);
    EXPECT_EQ(Log::toFile(""), ENOENT);
    EXPECT_EQ(Log::toFile(directory_.file("fifo")), ENXIO);
    debug("tag", "text");
    EXPECT_EQ(lines().size(), 1U);
}

TEST_F(LogTest, SyslogReceivesThreadTagAndText) {
    Log::toSyslog("name");
    debug("tag", "100%% of %s\n", "it");
    EXPECT_EQ(syslogged, std::to_string(LOG_DAEMON | LOG_INFO) + " [" + std::to_string(gettid()) +
                             "] tag: 100% of it\\n");
}

TEST_F(LogTest, NoFailureReachesTheCaller) {
    int broken[2];
    ASSERT_EQ(pipe(broken), 0);
    close(broken[0]);
    const int full = open("/dev/full", O_WRONLY);
    const int stderrBefore = dup(STDERR_FILENO);
    const auto survives = [this](const char* format, auto value) {
        errno = EXDEV;
        debug("tag", format, value);
        const int left = errno;
        sigset_t pending;
        sigpending(&pending);
        return left == EXDEV && !sigismember(&pending, SIGPIPE);
    };

    EXPECT_TRUE(survives("lost: %ls", L"\x7fffffff"));
    g_ptrLogWriter = boost::make_shared<OwnWriter>(100);
    EXPECT_TRUE(survives("%s", "lost: the writer throws"));
    g_ptrLogWriter.reset();
    EXPECT_TRUE(survives("%s", "lost: no writer"));
    g_ptrLogWriter = boost::make_shared<OwnWriter>(9);
    EXPECT_TRUE(survives("%m %d", 0)); // the errno that the caller sees is also the one written

    EXPECT_EQ(Log::toFile("/dev/full"), 0);
    EXPECT_TRUE(survives("%s", "lost"));
    Log::toStandardError();
    for (const int target : {broken[1], full}) {
        dup2(target, STDERR_FILENO);
        EXPECT_TRUE(survives("%s", "lost"));
    }
    close(STDERR_FILENO);
    EXPECT_TRUE(survives("%s", "lost"));

    dup2(stderrBefore, STDERR_FILENO);
    for (const int fd : {broken[1], full, stderrBefore})
        close(fd);
    const auto written = lines();
    ASSERT_EQ(written.size(), 1U);
    EXPECT_EQ(tagAndText(written[0]), "tag: Invalid cross-device link 0");
}

TEST_F(LogTest, RecordAfterATornOneStartsALine) {
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{150, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    debug("tag", "%s", std::string(300, 'x').c_str()); // cut short
    debug("tag", "lost");                              // nothing of it fits
    setrlimit(RLIMIT_FSIZE, &before);
    debug("tag", "whole");
    ASSERT_EQ(lines().size(), 2U);
    EXPECT_EQ(lines()[0].size(), 150U);
    EXPECT_EQ(tagAndText(lines()[1]), "tag: whole");
}

/** A host whose standard error is closed must not find the log file in its place. */
TEST_F(LogTest, FileDoesNotTakeThePlaceOfAClosedStandardError) {
    const int before = dup(STDERR_FILENO);
    close(STDERR_FILENO);
    EXPECT_EQ(Log::toFile(directory_.file("other")), 0);
    EXPECT_EQ(write(STDERR_FILENO, "x", 1), -1);
    debug("tag", "text");
    dup2(before, STDERR_FILENO);
    close(before);
    EXPECT_EQ(linesOf(directory_.file("other")).size(), 1U);
}

} // namespace
