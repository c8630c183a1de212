#include "ChildEnvironment.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace {

/** The PATH of a caller that has none. */
constexpr const char* DefaultPath = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";

void appendMissing(std::string& path, const std::string& directory) {
    if ((":" + path + ":").find(":" + directory + ":") == std::string::npos)
        path += ":" + directory;
}

std::string searchPath() {
    const char* inherited = getenv("PATH");
    std::string path = inherited && *inherited ? inherited : DefaultPath;
    appendMissing(path, "/usr/sbin");
    appendMissing(path, "/sbin");
    return path;
}

bool isReplaced(const char* entry) {
    return strncmp(entry, "PATH=", 5) == 0 || strncmp(entry, "LC_ALL=", 7) == 0;
}

} // namespace

ChildEnvironment::ChildEnvironment() : path_("PATH=" + searchPath()) {
    for (char** entry = environ; entry && *entry; ++entry)
        if (!isReplaced(*entry))
            entries_.push_back(*entry);
    entries_.push_back(path_.data());
    entries_.push_back(locale_.data());
    entries_.push_back(nullptr);
}
