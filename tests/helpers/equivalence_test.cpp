/* Rules that take a short cut, against the plain rule that each stands for, on random texts. */
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "Conventions.h"
#include "Dependencies.h"
#include "PartitionsTable.h"

namespace {

/** Texts made of pieces that mean something to a rule, and of bytes that should not. */
class Texts {
public:
    explicit Texts(std::vector<std::string> allPieces) : pieces(std::move(allPieces)) {}

    std::string next(std::size_t mostPieces) {
        std::string text;
        for (std::size_t left = below(mostPieces + 1); left > 0; --left)
            text += below(16) == 0 ? std::string(1, static_cast<char>(below(256))) : pick(pieces);
        return text;
    }
    template <typename Value>
    Value pick(const std::vector<Value>& values) {
        return values[below(values.size())];
    }

private:
    std::size_t below(std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
    }

    std::vector<std::string> pieces;
    std::mt19937 random{20240229}; // the same texts in every run
};

const std::string nul("\0", 1);
// 8 beyond 32 bits, and numbers beyond 64 bits.
const std::vector<std::string> numbers = {"8",  "16", "0", "08", "4294967304", "18446744073709551624",
                                          "-8", "+8", "1", "9"};

/** The rule in two searches: a disk's name, and the number that the line begins with. */
std::optional<std::string> diskName(const std::string& line, DeviceNumber number) {
    static const NrRegEx disk("sd[a-z]+", REG_EXTENDED);
    static const NrRegEx digits("[0-9]+", REG_EXTENDED);
    std::string name, major;
    NrRegEx::Range range;
    if (!disk.match(line, &name, nullptr) || !digits.match(line, &major, &range))
        return std::nullopt;
    const char* const minor = line.c_str() + std::min<std::size_t>(range.second + 1, line.size());
    if (unsignedDecimal(major.c_str()) != number.major || unsignedDecimal(minor) != number.minor)
        return std::nullopt;
    return name;
}

TEST(Equivalence, a_partitions_line_matches_as_by_the_two_searches) {
    std::vector<std::string> pieces = {"sd", "sda", "sdz", "s", "d", "Z", " ", "  ", "\t", "\v", ".", nul};
    pieces.insert(pieces.end(), numbers.begin(), numbers.end());
    Texts texts(pieces);
    const std::vector<int> wanted = {8, 16, 0, 1, -1, -8};
    std::size_t matches = 0;
    for (int i = 0; i < 300000; ++i) {
        const DeviceNumber number{texts.pick(wanted), texts.pick(wanted)};
        // Lines of the usual order among them, so that many match.
        const std::string line = i % 2 == 0 ? texts.next(8)
                                            : ' ' + texts.pick(numbers) + texts.pick(pieces) +
                                                  texts.pick(numbers) + ' ' + texts.next(2) + "sda";
        const auto expected = diskName(line, number);
        std::string name;
        const bool found = DiskPattern(number).match(line, &name);
        ASSERT_EQ(expected.has_value(), found) << testing::PrintToString(line) << number.option();
        ASSERT_EQ(expected.value_or(name), name) << testing::PrintToString(line);
        matches += found;
    }
    EXPECT_GT(matches, 1000U);
}

using Dependencies = std::vector<std::pair<int, int>>;

/** The walk by the pattern alone, searched for anywhere in what is left. */
Dependencies plainWalk(const std::string& listing, std::size_t position) {
    static const NrRegEx pattern("([0-9]+,[ ]+[0-9]+)", REG_EXTENDED);
    Dependencies found;
    std::string text;
    NrRegEx::Range range;
    for (; position < listing.size() && pattern.match(listing.substr(position), &text, &range);
         position += range.second + 1) {
        const auto major = text.find_first_of("123456789");
        found.emplace_back(major == std::string::npos ? 0 : unsignedDecimal(text.c_str() + major),
                           unsignedDecimal(text.c_str() + text.find(',') + 1));
    }
    return found;
}

Dependencies walk(const std::string& listing, std::size_t position) {
    static const DependencyPattern pattern;
    Dependencies found;
    while (const auto dependency = pattern.find(listing, position)) {
        found.emplace_back(dependency->number.major, dependency->number.minor);
        position = dependency->end + 1;
    }
    return found;
}

TEST(Equivalence, dependencies_are_found_as_by_searching_for_the_pattern) {
    std::vector<std::string> pieces = {",", ",",  ",",  " ", " ",  "  ",      "(",
                                       ")", "\t", "\n", nul, ", ", "(8, 16) "};
    pieces.insert(pieces.end(), numbers.begin(), numbers.end());
    Texts texts(pieces);
    std::size_t dependencies = 0;
    for (int i = 0; i < 200000; ++i) {
        const std::string listing = texts.next(24);
        const auto start = texts.pick<std::size_t>({0, 0, 1, 2});
        const Dependencies expected = plainWalk(listing, start);
        ASSERT_EQ(expected, walk(listing, start)) << testing::PrintToString(listing) << " from " << start;
        dependencies += expected.size();
    }
    EXPECT_GT(dependencies, 50000U);
}

TEST(Equivalence, a_path_is_copied_as_the_joined_text_is) {
    Texts texts({"mpatha", nul, std::string(500, 'x'), std::string(1003, 'y'), "/", "\n"});
    for (int i = 0; i < 20000; ++i) {
        const std::string name = texts.next(5);
        std::string expected(1025, '\xA5'), buffer = expected;
        std::strncpy(expected.data(), ("/dev/mapper/" + name).c_str(), 1023);
        expected[1023] = '\0';
        copyPath("/dev/mapper/", name, buffer.data());
        ASSERT_EQ(expected, buffer) << testing::PrintToString(name);
    }
}

} // namespace
