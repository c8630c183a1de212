/* Every entry point of the library file, call by call, as the *.transcript files beside this one
 * tell. In such a file
 *
 *     == a fact                  begins a case: the call (see Caller.h), then all that happens (see
 *                                World.h), then what came back
 *     == $name                   begins a text that stands for $name from there on
 *     5 times: … end             stands for the lines between, five times
 *     <x*1024>                   stands for 1024 times "x"
 *     # …                        is a comment
 */
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "Caller.h"

namespace {

std::string join(const world::Lines& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + '\n';
    return text;
}

world::Lines split(const std::string& text) {
    std::istringstream stream(text);
    world::Lines lines;
    for (std::string line; std::getline(stream, line);)
        if (!line.empty() && line.front() != '#')
            lines.push_back(line);
    return lines;
}

void replaceAll(std::string& text, const std::string& name, const std::string& value) {
    for (auto at = text.find(name); at != std::string::npos; at = text.find(name, at + value.size()))
        text.replace(at, name.size(), value);
}

/** Writes out what stands for repeated characters, then for repeated lines. */
std::string writeOut(std::string text) {
    for (auto star = text.find("*"); star != std::string::npos; star = text.find("*", star + 1))
        if (const auto end = text.find('>', star);
            star >= 2 && text[star - 2] == '<' && end != std::string::npos)
            text.replace(star - 2, end - star + 3,
                         std::string(std::stoul(text.substr(star + 1, end - star - 1)), text[star - 1]));
    const std::string times = " times:\n";
    for (auto at = text.find(times); at != std::string::npos; at = text.find(times)) {
        const auto start = text.rfind('\n', at) + 1;
        const auto body = at + times.size();
        const auto end = text.find("end\n", body);
        std::string repeated;
        for (auto count = std::stoul(text.substr(start)); count > 0; --count)
            repeated += text.substr(body, end - body);
        text.replace(start, end + 4 - start, repeated);
    }
    return text;
}

class Transcript : public testing::Test {
public:
    explicit Transcript(const std::string& text) : lines(split(writeOut(join(split(text))))) {}

    void TestBody() override {
        ASSERT_FALSE(lines.empty());
        const Plugin plugin;
        errno = 0;
        const auto result = std::find_if(lines.begin(), lines.end(),
                                         [](const std::string& line) { return line.rfind("= ", 0) == 0; });
        world::play({lines.begin() + 1, result});
        const auto told = call(plugin, lines.front());
        world::Lines happened = world::finish();
        happened.insert(happened.begin(), lines.front());
        happened.insert(happened.end(), told.begin(), told.end());
        EXPECT_EQ(join(lines), join(happened));
    }

private:
    world::Lines lines;
};

void registerCase(const std::filesystem::path& file, const std::string& title, const std::string& text) {
    std::string name = title;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    testing::RegisterTest(file.stem().c_str(), name.c_str(), nullptr, nullptr, file.c_str(), 1,
                          [text]() -> testing::Test* { return new Transcript(text); });
}

/** Registers the cases of all files, each with the texts that stand for names written out. */
bool registerCases() {
    for (const auto& entry : std::filesystem::directory_iterator(TRANSCRIPTS)) {
        if (entry.path().extension() != ".transcript")
            continue;
        std::ifstream stream(entry.path());
        std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
        for (auto heading = text.find("== "); heading != std::string::npos;) {
            const auto end = text.find('\n', heading);
            const std::string title = text.substr(heading + 3, end - heading - 3);
            const auto following = text.find("\n== ", end);
            const auto next = following == std::string::npos ? following : following + 1;
            const std::string body = text.substr(end + 1, next == std::string::npos ? next : next - end - 1);
            if (title.front() == '$') {
                std::string rest = next == std::string::npos ? "" : text.substr(next);
                replaceAll(rest, title, body.substr(0, body.find_last_not_of('\n') + 1));
                text.replace(next, std::string::npos, rest);
            } else {
                registerCase(entry.path(), title, body);
            }
            heading = next;
        }
    }
    return true;
}

const bool registered = registerCases();

} // namespace
