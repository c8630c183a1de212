#include "Plugin.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include "ExitStatus.h"

void Plugin::Unload::operator()(void* library) const {
    dlclose(library);
}

static void* load(const std::filesystem::path& file) {
    if (!std::filesystem::exists(file))
        throw Failure(fmt::format("there is no plug-in {}", file.string()));
    if (!std::filesystem::is_regular_file(file))
        throw Failure(fmt::format("{} is not a plug-in: name the library file itself", file.string()));
    // An absolute path: dlopen would look for a name without a slash in the system's directories.
    void* library = dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        throw Failure(fmt::format("cannot load the plug-in {}: {}", file.string(), dlerror()));
    return library;
}

Plugin::Plugin(const Path& file) : file_(file), library_(load(file)) {}

Plugin::Symbol Plugin::entry(const char* name, const char* symbol) const {
    void* address = dlsym(library_.get(), symbol);
    if (!address)
        throw Failure(
            fmt::format("the plug-in {} lacks the entry point {} (symbol {})", file_.string(), name, symbol));
    return {address};
}

std::filesystem::path Plugin::defaultFile() {
    static const char name[] = "libNrMPIO_Linux.so";
    const Path bin = std::filesystem::canonical("/proc/self/exe").parent_path();
    const Path beside = bin / name;
    const Path installed = (bin / NRMPIO_PLUGIN_DIR_FROM_BIN / name).lexically_normal();
    for (const Path& file : {beside, installed})
        if (std::filesystem::exists(file))
            return file;
    throw Failure(fmt::format("there is no plug-in at {} or at {}; name one with --plugin", beside.string(),
                              installed.string()));
}
