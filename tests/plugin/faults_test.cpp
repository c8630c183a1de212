/* One thing goes wrong in a call where everything else works; then the same with the next thing.
 *
 * The good path of each entry point is taken, and each thing that it asks is answered in every
 * wrong way, once or from then on, in a world where all that the good path never asks either
 * succeeds without a word or fails.
 */
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <sys/wait.h>

#include "Transcripts.h"

using world::Lines;

namespace {

bool startsWith(const std::string& text, const std::string& prefix) {
    return text.rfind(prefix, 0) == 0;
}

bool startsWithOneOf(const std::string& text, const Lines& prefixes) {
    return std::any_of(prefixes.begin(), prefixes.end(),
                       [&text](const std::string& prefix) { return startsWith(text, prefix); });
}

// ---------------------------------------------------------------------------------------------
// What a call may come back with
// ---------------------------------------------------------------------------------------------

/** A call's result and what it wrote. A rule takes what it allows; what is left was not allowed. */
class Outcome {
public:
    Outcome(const std::string& call, const Lines& told) : result(told.front().substr(2)) {
        const std::string option = " count=";
        if (const auto count = call.find(option); count != std::string::npos)
            capacity = std::stoi(call.substr(count + option.size()));
        for (auto line = told.begin() + 1; line != told.end(); ++line)
            written[line->substr(0, line->find(' '))] = line->substr(line->find(' ') + 1);
    }

    bool is(const char* text) const { return result == text; }
    bool begins(const char* text) const { return startsWith(result, text); }
    int number() const { return std::stoi(result); }
    bool nothingLeft() const { return written.empty(); }

    /** A number that was written, or else the one given. */
    int takeNumber(const char* name, int otherwise) {
        const std::string text = take(name);
        return text.empty() ? otherwise : std::stoi(text);
    }
    bool takeText(const char* name) { return isText(take(name)); }
    bool takeCopy(const char* name) { return isCopy(take(name)); }

    /** errCode with that code, which is none of success, and a copy of what the command said. */
    bool takeReport(int code) { return code != 0 && takeNumber("errCode", 0) == code && takeCopy("errBuf"); }

    /** A failed command: the result is minus its code. */
    bool failed() {
        const int code = takeNumber("errCode", 0);
        return code != 0 && number() == (code > 0 ? -code : code) && takeCopy("errBuf");
    }

    /** Device paths with that start, and their number; the result tells whether there are more. */
    bool listed(const std::string& start) {
        int entries = 0;
        for (std::string path; !(path = take("devices[" + std::to_string(entries) + ']')).empty(); ++entries)
            if (!isCopy(path) || !startsWith(path, '"' + start))
                return false;
        return (number() == 0 || number() > capacity) && entries <= capacity &&
               takeNumber("count", capacity) == entries;
    }

    /** How many records, from the first on, were written. */
    int takeRecords() {
        int records = 0;
        while (isCopy(take("parts[" + std::to_string(records) + ']')))
            ++records;
        return records;
    }

    int capacity = 0;

private:
    std::string take(const std::string& name) {
        const auto found = written.extract(name);
        return found.empty() ? "" : found.mapped();
    }
    static bool isText(const std::string& text) {
        return startsWith(text, "\"") && text.find("\" then something else") == std::string::npos;
    }
    static bool isCopy(const std::string& text) {
        return isText(text) && (text.find("\" padded") != std::string::npos || text.size() > 1023);
    }

    std::string result;
    std::map<std::string, std::string> written;
};

/** What an entry point promises, whatever is wrong around it. */
struct Promise {
    const char* entryPoint;
    bool (*holds)(Outcome&); /**< Takes what may have been written. */
    Lines changes;           /**< How commands begin that it may run besides asking. */
    Lines forgiven;          /**< What may fail without a trace in what the call comes back with. */
};

void PrintTo(const Promise& promise, std::ostream* stream) {
    *stream << promise.entryPoint;
}

bool isAnswer(Outcome& o) {
    return o.is("0") || o.is("1");
}
bool isVendorName(Outcome& o) {
    return o.is("\"Norvane: Linux Native MPIO\"");
}
bool isDiskName(Outcome& o) {
    return o.is("\"\"") || o.begins("\"sd");
}
bool isStatus(Outcome& o) {
    return o.number() == 0 || o.takeReport(o.number());
}
bool isRemoval(Outcome& o) {
    const int code = o.takeNumber("errCode", 0x5A5A5A5A);
    const bool reported = o.takeText("errBuf");
    return o.number() == 0 && code != 0x5A5A5A5A && (code == 0 || reported);
}
bool isPartitionList(Outcome& o) {
    const int partitions = o.number();
    const int records = o.takeRecords();
    const int count = o.takeNumber("count", o.capacity);
    if (partitions >= 0)
        return count == partitions && records == std::min(partitions, o.capacity);
    if (partitions == -6 && o.nothingLeft())
        return count == o.capacity && records == 0;
    const bool refused = count == o.capacity && records == 0 && partitions == -1;
    const bool nodeAbsent = count == -1 && records > 0 && partitions == -1;
    return (refused || nodeAbsent || count == 0) && o.takeNumber("errCode", 0) == partitions &&
           o.takeText("errBuf");
}

const Promise promises[] = {
    {"init", [](Outcome& o) { return o.is("null") || isVendorName(o); }, {}, {}},
    {"getMPIODevices",
     [](Outcome& o) { return o.number() < 0 ? o.failed() : o.listed("/dev/mapper/"); },
     {},
     {}},
    {"isMPIODevice", isAnswer, {}, {}},
    {"getUnderlyingDevices",
     [](Outcome& o) {
         return o.number() >= 0 ? o.listed("/dev/sd") : (o.is("-6") && o.nothingLeft()) || o.failed();
     },
     {},
     {}},
    {"isPartitionDevice",
     [](Outcome& o) { return o.is("1") ? o.takeText("parentPath") : o.is("0"); },
     {},
     {}},
    {"getPartitionDevices",
     isPartitionList,
     {"run kpartx -a /dev/mapper/mpatha"},
     {"run dmsetup deps | grep "}},
    {"refreshMPIO", isStatus, {"run multipath"}, {}},
    {"setFailIfNoPathDevice", isStatus, {"run dmsetup message "}, {}},
    {"deleteMPIODevicePartitions", isRemoval, {"run dmsetup remove "}, {}},
    {"deleteMPIODevice",
     [](Outcome& o) { return o.number() == 0 ? isRemoval(o) : o.takeReport(o.number()); },
     {"run dmsetup message ", "run dmsetup remove ", "run multipath -f "},
     {"run dmsetup message "}},
    {"getScsiDevName", [](Outcome& o) { return isDiskName(o); }, {}, {}},
};

// ---------------------------------------------------------------------------------------------
// What may go wrong
// ---------------------------------------------------------------------------------------------

constexpr std::size_t megabyte = 1 << 20;
const char digits[] = "0123456789";
const char letters[] = "abcdefghijklmnopqrstuvwxyz";

/** Another text in the place of each number. */
std::string renumbered(const std::string& text, const std::string& number) {
    std::string changed;
    for (std::size_t i = 0; i < text.size(); i = std::min(text.find_first_not_of(digits, i), text.size())) {
        const auto next = std::min(text.find_first_of(digits, i), text.size());
        changed += text.substr(i, next - i) + (next < text.size() ? number : "");
        i = next;
    }
    return changed;
}

std::string without(std::string text, char c) {
    text.erase(std::remove(text.begin(), text.end(), c), text.end());
    return text;
}

/** A megabyte more of the character at a position; as much of the first one where there is none. */
std::string stretched(std::string text, std::size_t position, char first) {
    return position == std::string::npos ? std::string(megabyte, first)
                                         : text.insert(position, megabyte, text[position]);
}

std::string repeated(const std::string& text) {
    std::string all;
    while (!text.empty() && all.size() < megabyte / 8)
        all += text;
    return all;
}

std::string everyByte() {
    std::string bytes;
    for (int byte = 511; byte >= 0; --byte)
        bytes += static_cast<char>(byte);
    return bytes;
}

/** What becomes of a text that was read. */
const struct {
    const char* name;
    std::string (*of)(const std::string& good);
} damages[] = {
    {"nothing", [](const std::string&) { return std::string(); }},
    {"a line end", [](const std::string&) { return std::string("\n"); }},
    {"half", [](const std::string& s) { return s.substr(0, s.size() / 2); }},
    {"the other half", [](const std::string& s) { return s.substr(s.size() / 2); }},
    {"all but its last word", [](const std::string& s) { return s.substr(0, s.rfind(' ')); }},
    {"NUL in the middle", [](const std::string& s) { return std::string(s).insert(s.size() / 2, 1, '\0'); }},
    {"every byte", [](const std::string&) { return everyByte(); }},
    {"every byte behind it", [](const std::string& s) { return s + everyByte(); }},
    {"no blanks", [](const std::string& s) { return without(s, ' '); }},
    {"no colons", [](const std::string& s) { return without(s, ':'); }},
    {"no line ends", [](const std::string& s) { return without(s, '\n'); }},
    {"no digits", [](const std::string& s) { return renumbered(s, ""); }},
    {"zeros", [](const std::string& s) { return renumbered(s, "0"); }},
    {"negative numbers", [](const std::string& s) { return renumbered(s, "-1"); }},
    {"numbers beyond 64 bits", [](const std::string& s) { return renumbered(s, std::string(25, '9')); }},
    {"a megabyte of digits", [](const std::string&) { return std::string(megabyte, '7'); }},
    {"a megabyte of high bytes", [](const std::string&) { return std::string(megabyte, '\xFF'); }},
    {"a first number of a megabyte",
     [](const std::string& s) { return stretched(s, s.find_first_of(digits), '8'); }},
    {"a last number of a megabyte",
     [](const std::string& s) { return stretched(s, s.find_last_of(digits), '8'); }},
    {"a last name of a megabyte",
     [](const std::string& s) { return stretched(s, s.find_last_of(letters), 's'); }},
    {"a megabyte of blanks", [](const std::string& s) { return stretched(s, s.rfind(' '), ' '); }},
    {"a megabyte of commas", [](const std::string& s) { return stretched(s, s.rfind(','), ','); }},
    {"the same over and over", repeated},
};

struct WrongAnswer {
    std::string name;
    Lines words;         /**< See world::Fault. */
    bool failed = false; /**< The command told that it failed. */
};

std::vector<WrongAnswer> ofCommand(const Lines& good) {
    const std::string out = good.size() > 1 ? good[1] : "";
    std::vector<WrongAnswer> wrong{
        {"fails", {"1", out, "Command failed.\n"}, true},
        {"cannot start", {"127", "", "sh: 1: not found\n"}, true},
        {"is killed", {"137", out.substr(0, out.size() / 2)}, true},
        {"fails with a megabyte", {"-2147483648", out, std::string(megabyte, 'x')}, true},
        {"fails with garbage", {"6", everyByte(), everyByte()}, true},
    };
    for (const auto& damage : damages)
        wrong.push_back({std::string("prints ") + damage.name, {"0", damage.of(out), ""}});
    return wrong;
}

std::vector<WrongAnswer> ofFile(const Lines& good) {
    std::vector<WrongAnswer> wrong{{"cannot be opened", {"errno", "24"}}};
    for (const auto& damage : damages)
        wrong.push_back({std::string("holds ") + damage.name, {damage.of(good.front())}});
    return wrong;
}

std::vector<WrongAnswer> ofNode(const Lines&) {
    return {{"is absent", {"errno", "2"}},
            {"cannot be asked", {"errno", "13"}},
            {"is a file", {"mode", "0100644"}},
            {"is another", {"block", "9:2"}},
            {"has the largest number", {"block", "4294967295:4294967295"}}};
}

std::vector<WrongAnswer> ofPartitionTable(const Lines&) {
    Lines many{"1000"};
    many.resize(1001, "-2147483648:18446744073709551615+18446744073709551615");
    return {{"cannot be read", {"-5"}},
            {"fails as nothing does", {"-2147483648"}},
            {"has no partition", {"0"}},
            {"has an empty partition", {"1", "0+0"}},
            {"has many without sense", many}};
}

/** Every wrong answer to a line of a script; none for what has no answer. */
std::vector<WrongAnswer> wrongAnswers(const std::string& line) {
    const auto arrow = line.find(" -> ");
    if (arrow == std::string::npos)
        return {};
    const Lines good = world::words(line.substr(arrow + 4));
    const std::string call = line.substr(line.find_first_not_of(" -"));
    return startsWith(call, "run ")    ? ofCommand(good)
           : startsWith(call, "open ") ? ofFile(good)
           : startsWith(call, "stat ") ? ofNode(good)
                                       : ofPartitionTable(good);
}

// ---------------------------------------------------------------------------------------------
// The sweep
// ---------------------------------------------------------------------------------------------

/** What a call must not leave behind. */
struct Remains {
    static std::ptrdiff_t entries(const char* directory) {
        return std::distance(std::filesystem::directory_iterator(directory), {});
    }
    std::ptrdiff_t descriptors = entries("/proc/self/fd");
    std::ptrdiff_t threads = entries("/proc/self/task");
    bool children = waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD;
};

class Faults : public testing::TestWithParam<Promise> {
protected:
    /** Makes the call in that world. */
    void sweep(const world::Fault& fault, const WrongAnswer& wrong) {
        world::play(good.script, fault);
        Lines told{"= thrown"};
        EXPECT_NO_THROW(told = call(plugin, good.call));
        const Lines calls = world::finish();
        expectPromise(told);
        for (const std::string& happened : calls)
            expectAllowed(happened);
        if (wrong.failed && !fault.othersSucceed && told == good.told) {
            EXPECT_TRUE(isForgiven(calls, fault)) << "a failure passes for success";
        }
        const Remains after;
        EXPECT_EQ(before.descriptors, after.descriptors);
        EXPECT_EQ(before.threads, after.threads);
        EXPECT_FALSE(after.children);
    }

    void expectPromise(const Lines& told) const {
        Outcome outcome(good.call, told);
        EXPECT_TRUE(GetParam().holds(outcome) && outcome.nothingLeft()) << join(told).substr(0, 4000);
    }

    /** Every log object is used and ended in its turn, and no command is run but what is allowed. */
    void expectAllowed(const std::string& happened) const {
        static const Lines wrong{"log ended", "log never", "log elsewhere", "log with"};
        static const Lines asking{"run dmsetup table", "run dmsetup info -c ", "run dmsetup deps ",
                                  "run multipath -d  -v1 -l"};
        const Promise& promise = GetParam();
        EXPECT_FALSE(startsWithOneOf(happened, wrong)) << happened.substr(0, 400);
        EXPECT_TRUE(!startsWith(happened, "run ") || startsWithOneOf(happened, asking) ||
                    startsWithOneOf(happened, promise.changes))
            << happened.substr(0, 400);
    }

    /** Nothing depends on the command that failed, or it was asked twice and answered once. */
    bool isForgiven(const Lines& calls, const world::Fault& fault) const {
        const auto failed = calls.begin() + static_cast<std::ptrdiff_t>(fault.line);
        return startsWithOneOf(*failed, GetParam().forgiven) ||
               std::find(calls.begin(), failed, *failed) != failed ||
               (!fault.lasting && std::find(failed + 1, calls.end(), *failed) != calls.end());
    }

    const Plugin plugin;
    const Transcript good = goodPath(GetParam().entryPoint);
    const Remains before{};
};

TEST_P(Faults, break_no_promise) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "one thread has no races, and they would take minutes";
#endif
    world::play(good.script, {good.script.size(), {}, false, false});
    EXPECT_EQ(good.told, call(plugin, good.call)) << "without a fault";
    world::finish();

    int calls = 0;
    for (std::size_t line = 0; line < good.script.size(); ++line)
        for (const WrongAnswer& wrong : wrongAnswers(good.script[line]))
            for (const bool lasting : {false, true})
                for (const bool othersSucceed : {false, true}) {
                    SCOPED_TRACE(good.script[line] + "\n  " + wrong.name + (lasting ? " from then on" : "") +
                                 (othersSucceed ? ", all others succeed" : ""));
                    sweep({line, wrong.words, lasting, othersSucceed}, wrong);
                    ++calls;
                }
    RecordProperty("calls", calls);
}

INSTANTIATE_TEST_SUITE_P(Each, Faults, testing::ValuesIn(promises),
                         [](const auto& instance) { return instance.param.entryPoint; });

} // namespace
