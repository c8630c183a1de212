/* A directory that is gone with its content when the test ends. */
#ifndef TEMPORARYDIRECTORY_H
#define TEMPORARYDIRECTORY_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::string pattern = std::filesystem::temp_directory_path() / "hostlibs.XXXXXX";
        if (!mkdtemp(pattern.data()))
            throw std::runtime_error("cannot create " + pattern);
        path_ = pattern;
    }
    ~TemporaryDirectory() { std::filesystem::remove_all(path_); }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    std::string file(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

inline std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/** The lines of a file; a last one without its line end is marked. */
inline std::vector<std::string> linesOf(const std::string& path) {
    std::vector<std::string> lines;
    const std::string text = contentOf(path);
    for (size_t start = 0, end; start < text.size(); start = end + 1) {
        end = text.find('\n', start);
        if (end == std::string::npos) {
            lines.push_back(text.substr(start) + "<no line end>");
            break;
        }
        lines.push_back(text.substr(start, end - start));
    }
    return lines;
}

#endif
