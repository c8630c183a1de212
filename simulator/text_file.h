// The small text files that a world consists of.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace sim {

/// The world cannot be read or changed; what() says which file and why.
class WorldError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Throws a WorldError with `what` and the text of errno.
[[noreturn]] void throwErrno(const std::string& what);

/// The whole file, or nothing when there is none. Throws WorldError on any other failure.
std::optional<std::string> readFile(const std::string& path);

/// The file's text without its final line end; empty when there is no file.
std::string readLine(const std::string& path);

/// Writes the file where nobody reads it yet.
void createFile(const std::string& path, const std::string& text);

/// Adds to the end of the file, with one write(2).
void appendToFile(const std::string& path, const std::string& text);

/// Writes the file so that a reader sees the old text or the new one.
void writeFile(const std::string& path, const std::string& text);

void makeDirectory(const std::string& path);

/// Makes the link, in the place of an old one.
void makeLink(const std::string& target, const std::string& path);

/// What the link says; nothing when there is none.
std::optional<std::string> readLink(const std::string& path);

/// The names in a directory in byte order, without "." and ".."; empty when there is no directory.
std::vector<std::string> listDirectory(const std::string& path);

void removeFile(const std::string& path);
void removeTree(const std::string& path);

} // namespace sim
