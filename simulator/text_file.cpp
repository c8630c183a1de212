#include "text_file.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "unique_fd.h"

namespace sim {

namespace {

void writeOpened(const std::string& path, int flags, const std::string& text) {
    const UniqueFd fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | flags, 0644));
    if (!fd.valid())
        throwErrno(path);
    for (size_t done = 0; done < text.size();) {
        const ssize_t count = ::write(fd.get(), text.data() + done, text.size() - done);
        if (count >= 0)
            done += static_cast<size_t>(count);
        else if (errno != EINTR)
            throwErrno(path);
    }
}

} // namespace

void throwErrno(const std::string& what) {
    throw WorldError(what + ": " + std::strerror(errno));
}

std::optional<std::string> readFile(const std::string& path) {
    const UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!fd.valid()) {
        if (errno == ENOENT || errno == ENOTDIR)
            return std::nullopt;
        throwErrno(path);
    }
    std::string text;
    char block[4096];
    for (;;) {
        const ssize_t count = ::read(fd.get(), block, sizeof block);
        if (count == 0)
            return text;
        if (count > 0)
            text.append(block, static_cast<size_t>(count));
        else if (errno != EINTR)
            throwErrno(path);
    }
}

std::string readLine(const std::string& path) {
    std::string text = readFile(path).value_or("");
    if (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}

void createFile(const std::string& path, const std::string& text) {
    writeOpened(path, O_TRUNC, text);
}

void appendToFile(const std::string& path, const std::string& text) {
    writeOpened(path, O_APPEND, text);
}

void writeFile(const std::string& path, const std::string& text) {
    const std::string draft = path + ".new";
    createFile(draft, text);
    if (::rename(draft.c_str(), path.c_str()) != 0)
        throwErrno(path);
}

void makeDirectory(const std::string& path) {
    if (::mkdir(path.c_str(), 0755) != 0 && errno != EEXIST)
        throwErrno(path);
}

void makeLink(const std::string& target, const std::string& path) {
    if (::symlink(target.c_str(), path.c_str()) == 0)
        return;
    const std::string draft = path + ".new";
    if (errno != EEXIST)
        throwErrno(path);
    ::unlink(draft.c_str());
    if (::symlink(target.c_str(), draft.c_str()) != 0 || ::rename(draft.c_str(), path.c_str()) != 0)
        throwErrno(path);
}

std::optional<std::string> readLink(const std::string& path) {
    char target[PATH_MAX];
    const ssize_t length = ::readlink(path.c_str(), target, sizeof target);
    if (length < 0)
        return std::nullopt;
    return std::string(target, static_cast<size_t>(length));
}

std::vector<std::string> listDirectory(const std::string& path) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(::opendir(path.c_str()), &::closedir);
    if (!directory)
        return names;
    while (const dirent* entry = ::readdir(directory.get()))
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            names.emplace_back(entry->d_name);
    std::sort(names.begin(), names.end());
    return names;
}

void removeFile(const std::string& path) {
    if (::unlink(path.c_str()) != 0 && errno != ENOENT)
        throwErrno(path);
}

void removeTree(const std::string& path) {
    if (::unlink(path.c_str()) == 0 || errno == ENOENT)
        return;
    for (const std::string& name : listDirectory(path))
        removeTree(path + "/" + name);
    if (::rmdir(path.c_str()) != 0 && errno != ENOENT)
        throwErrno(path);
}

} // namespace sim
