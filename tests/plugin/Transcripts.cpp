#include "Transcripts.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

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
    for (auto star = text.find('*'); star != std::string::npos; star = text.find('*', star + 1))
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

Transcript transcript(const std::filesystem::path& file, const std::string& title, const std::string& body) {
    const world::Lines lines = split(writeOut(join(split(body))));
    const auto result = std::find_if(lines.begin(), lines.end(),
                                     [](const std::string& line) { return line.rfind("= ", 0) == 0; });
    if (lines.empty() || result == lines.end())
        throw std::runtime_error(file.string() + ": '" + title + "' has no call or no result");
    return {file.stem(), title, lines.front(), {lines.begin() + 1, result}, {result, lines.end()}};
}

/** Adds the cases of one file, each with the texts that stand for names written out. */
void read(const std::filesystem::path& file, std::vector<Transcript>& cases) {
    std::ifstream stream(file);
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
            cases.push_back(transcript(file, title, body));
        }
        heading = next;
    }
}

} // namespace

std::string Transcript::text() const {
    return call + '\n' + join(script) + join(told);
}

const std::vector<Transcript>& transcripts() {
    static const std::vector<Transcript> all = [] {
        std::vector<Transcript> cases;
        for (const auto& entry : std::filesystem::directory_iterator(TRANSCRIPTS))
            if (entry.path().extension() == ".transcript")
                read(entry.path(), cases);
        return cases;
    }();
    return all;
}

const Transcript& goodPath(const std::string& entryPoint) {
    const auto found =
        std::find_if(transcripts().begin(), transcripts().end(),
                     [&entryPoint](const Transcript& t) { return t.entryPoint() == entryPoint; });
    if (found == transcripts().end())
        throw std::logic_error("no transcript of " + entryPoint);
    return *found;
}

std::string play(const Plugin& plugin, const Transcript& transcript) {
    errno = 0;
    world::play(transcript.script);
    Transcript happened = transcript;
    happened.told = call(plugin, transcript.call);
    happened.script = world::finish();
    return happened.text();
}

std::string join(const world::Lines& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + '\n';
    return text;
}
