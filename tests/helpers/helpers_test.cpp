/* The helper classes and the shared rules of the plug-in. What tools print is as recorded from
 * dmsetup 1.02.185. */
#include <algorithm>
#include <climits>
#include <cstdio>
#include <gtest/gtest.h>
#include <optional>

#include "Conventions.h"
#include "Dmsetup.h"
#include "MPartIterator.h"
#include "World.h"

namespace {

using Strings = std::vector<std::string>;

const std::string mapTable =
    "0 131072 multipath 0 0 2 1 service-time 0 1 2 8:48 1 1 service-time 0 1 2 8:80 1 1 \n";
const std::string partitionTable = "0 16384 linear 253:0 2048\n";

TEST(NrRegEx, finds_the_first_match_or_leaves_its_outputs_alone) {
    const struct {
        const char* pattern;
        std::string text;
        const char* matched; // null: no match
        NrRegEx::Range range;
    } cases[] = {
        {"[0-9] [0-9]+ multipath", mapTable, "0 131072 multipath", {0, 18}},
        {"[0-9] [0-9]+ multipath", "mpatha: " + mapTable, "0 131072 multipath", {8, 26}},
        {"[0-9] [0-9]+ multipath", partitionTable, nullptr, {}},
        {"[0-9] [0-9]+ multipath", "0  131072 multipath", nullptr, {}},
        {"[0-9] [0-9]+ linear", partitionTable + partitionTable, "0 16384 linear", {0, 14}},
        {"[0-9] [0-9]+ linear", mapTable, nullptr, {}},
        // The end is an offset, not a length, and the group is not told apart from the whole.
        {"([0-9]+,[ ]+[0-9]+)", "2 dependencies\t: (8, 80) (8, 48)\n", "8, 80", {18, 23}},
        {"([0-9]+,[ ]+[0-9]+)", "0 dependencies\t:\n", nullptr, {}},
        {"sd[a-z]+", "   8       16      65536 sdb", "sdb", {25, 28}},
        {"sd[a-z]+", "   8       17       8192 sdaa1", "sdaa", {25, 29}},
        {"[0-9]+", "   8       16      65536 sdb", "8", {3, 4}},
        {"[0-9]+", "", nullptr, {}},
        {"[0-9]+",
         std::string("\0"
                     "16",
                     3),
         nullptr,
         {}},
        {"(", "(", nullptr, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.pattern) + " in " + c.text);
        const NrRegEx expression(c.pattern, REG_EXTENDED);
        std::string matched = "kept";
        NrRegEx::Range range{4711, 4712};
        const bool found = c.matched != nullptr;
        EXPECT_EQ(found, expression.match(c.text, nullptr, nullptr));
        EXPECT_EQ(found, expression.match(c.text, &matched, &range));
        EXPECT_EQ(found ? c.matched : "kept", matched);
        EXPECT_EQ(found ? c.range : NrRegEx::Range(4711, 4712), range);
    }
}

TEST(MTokenizer, splits_at_its_separator_at_NUL_and_if_wanted_at_whitespace) {
    const struct {
        char separator;
        bool splitOnSpace;
        std::string text;
        Strings tokens;
    } cases[] = {
        {' ', true, "", {}},
        {' ', true, "a  b", {"a", "b"}},
        {' ', true, partitionTable, {"0", "16384", "linear", "253:0", "2048"}},
        {' ', true, " \t\n\v\f\ra\n", {"a"}},
        {'\r', true, "mpatha1\nmpatha2", {"mpatha1", "mpatha2"}},
        {'\r', true, std::string("a\0b\r\nc", 6), {"a", "b", "c"}},
        {':', false, std::string("a b:\tc\n:\0d", 10), {"a b", "\tc\n", "d"}},
        {' ', true, "\xA0\x85\xFF", {"\xA0\x85\xFF"}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.tokens, tokenize(c.text, c.separator, c.splitOnSpace)) << c.text;
}

TEST(MTokenizer, hands_the_last_token_over_exactly_once) {
    Strings tokens;
    {
        MTokenizer tokenizer(tokens, ' ', true);
        tokenizer('a');
        MTokenizer copy(tokenizer); // shares the list and has the pending token of its own
        copy('b');
        copy.finalize();
        EXPECT_EQ(Strings{"ab"}, tokens);
    }
    EXPECT_EQ((Strings{"ab", "a"}), tokens);
}

TEST(Dmsetup, takes_the_device_beneath_the_first_linear_target) {
    const struct {
        std::string table;
        std::optional<std::pair<int, int>> device;
    } cases[] = {
        {partitionTable, {{253, 0}}},
        {"0 8 linear 253:3 0\n8 8 linear 254:1 0\n", {{253, 3}}},
        {"a b:c: 0 8 linear 254:0 120000\n", {{0, 0}}}, // the first colon is one of the name
        {"lin0: 0 32768 linear 254:0 65536\n", {}},     // no blank before the first colon
        {"0 8 linear 253 3", {}},
        {"", {}},
        {"0 8 linear 4294967549:4294967296", {{253, 0}}},
        {"0 8 linear 9223372036854775808:x", {{-1, 0}}}, // the largest long, narrowed
        {" :", {{0, 0}}},
    };
    for (const auto& c : cases) {
        const auto device = linearTargetDevice(c.table);
        ASSERT_EQ(c.device.has_value(), device.has_value()) << c.table;
        if (device) {
            EXPECT_EQ(*c.device, std::make_pair(device->major, device->minor)) << c.table;
        }
    }
}

/** What a command prints when a real shell runs it and dmsetup prints the text. */
std::string printed(const std::string& command, const std::string& text) {
    const std::string line = "dmsetup() { printf '%s' '" + text + "'; }; " + command;
    FILE* const shell = popen(line.c_str(), "r");
    std::string output(4096, '\0');
    output.resize(std::fread(output.data(), 1, output.size(), shell));
    pclose(shell);
    return output;
}

TEST(Dmsetup, the_shell_selects_exactly_the_mappings_on_a_device) {
    const std::string tables =
        "a40: 0 8 linear 253:40 0\nlin: 0 8 linear 1253:4 0\nmpatha: 0 8 multipath 0 0 253:4 1 \n"
        "mpatha2: 0 8 linear 253:4 2048\nmpatha1: 0 8 linear 253:4 18432\nempty: \n";
    EXPECT_EQ("mpatha2\nmpatha1\n", printed(linearMappingsCommand({253, 4}), tables));
    EXPECT_EQ("a40\n", printed(linearMappingsCommand({253, 40}), tables));
    EXPECT_EQ("", printed(linearMappingsCommand({253, 4}), "No devices found\n"));
}

TEST(Rules, copied_text_ends_at_its_NUL_or_is_cut_and_pads_the_buffer) {
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {std::string("a\0b", 3), "a"},
        {std::string(1023, 'x'), std::string(1023, 'x')},
        {std::string(1024, 'x'), std::string(1023, 'x')},
    };
    for (const auto& [text, copied] : cases) {
        std::string buffer(1025, '\xA5');
        copyText(text, buffer.data());
        EXPECT_EQ(copied + std::string(1024 - copied.size(), '\0') + '\xA5', buffer);
    }
}

TEST(Rules, every_int_has_its_negative_absolute_value) {
    for (const int code : {-1, 0, 1, INT_MAX, INT_MIN})
        EXPECT_EQ(-std::abs(static_cast<long long>(code)), minusAbsolute(code));
}

TEST(Rules, lines_and_bounded_commands) {
    using Lines = std::vector<std::string_view>;
    EXPECT_EQ(Lines{""}, splitLines(""));
    EXPECT_EQ((Lines{"a", "", "b"}), splitLines("a\n\nb"));
    EXPECT_EQ((Lines{"a", ""}), splitLines("a\n"));
    for (const std::size_t size : {0U, 511U, 512U})
        EXPECT_EQ(std::string(std::min<std::size_t>(size, 511), 'x'), bounded(std::string(size, 'x')));
}

TEST(MPartIterator, copies_count_on_their_own_and_write_into_one_array) {
    world::play({"run traced dmsetup deps | grep '(253, 0)$' | cut -d ':' -f1 -> 0 \"mpatha1\n\"",
                 "stat /dev/mpath/mpatha1 -> block 253:3",
                 "run quiet@0 dmsetup table -j 253 -m 3 -> 0 \"0 16384 linear 253:0 2048\""});
    world::setLogWriter(true);
    NrPartInfo parts[3];
    MPartIterator walk("/dev/mapper/mpatha", 253, 0, parts, 2);
    MPartIterator copy(walk);
    const slice mapped{2048, 16384, 0, 0, 1};
    const slice unmapped{2048, 16383, 0, 0, 2};
    for (const slice& partition : {unmapped, mapped, mapped})
        walk(partition);
    EXPECT_STREQ("", parts[0].devName);
    EXPECT_STREQ("/dev/mpath/mpatha1", parts[1].devName);
    EXPECT_STREQ("", parts[2].devName);
    copy(mapped);
    EXPECT_STREQ("/dev/mpath/mpatha1", parts[0].devName);
    MPartIterator(std::move(copy))(unmapped);
    EXPECT_EQ(2, parts[1].sliceMinor);
    EXPECT_EQ(0u, parts[1].devMajor);
    EXPECT_EQ(3u, world::finish().size());
    world::setLogWriter(false);
}

} // namespace
