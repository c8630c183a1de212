#include "Plugin.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include "ExitStatus.h"

// Not the untagged symbol: an older plug-in may have a function there that returns another string.
static const char scsiDevNameSymbol[] = "_Z14getScsiDevNameB5cxx11ii";

void Plugin::Unload::operator()(void* library) const {
    dlclose(library);
}

static void* load(const std::filesystem::path& file) {
    if (!std::filesystem::exists(file))
        throw Failure(fmt::format("there is no plug-in {}", file.string()));
    // An absolute path: dlopen would look for a name without a slash in the system's directories.
    void* library = dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        throw Failure(fmt::format("cannot load the plug-in {}: {}", file.string(), dlerror()));
    return library;
}

void* Plugin::find(const char* entryPoint, const char* symbol) const {
    void* address = dlsym(library_.get(), symbol);
    if (!address)
        throw Failure(fmt::format("the plug-in {} lacks the entry point {} (symbol {})", file_.string(),
                                  entryPoint, symbol));
    return address;
}

Plugin::Plugin(const Path& file)
    : file_(file), library_(load(file)),                                                        //
      getVendorName(entry<decltype(::getVendorName)>("getVendorName")),                         //
      init(entry<decltype(::init)>("init")),                                                    //
      getMPIODevices(entry<decltype(::getMPIODevices)>("getMPIODevices")),                      //
      isMPIODevice(entry<decltype(::isMPIODevice)>("isMPIODevice")),                            //
      getUnderlyingDevices(entry<decltype(::getUnderlyingDevices)>("getUnderlyingDevices")),    //
      isPartitionDevice(entry<decltype(::isPartitionDevice)>("isPartitionDevice")),             //
      getPartitionDevices(entry<decltype(::getPartitionDevices)>("getPartitionDevices")),       //
      refreshMPIO(entry<decltype(::refreshMPIO)>("refreshMPIO")),                               //
      setFailIfNoPathDevice(entry<decltype(::setFailIfNoPathDevice)>("setFailIfNoPathDevice")), //
      deleteMPIODevice(entry<decltype(::deleteMPIODevice)>("deleteMPIODevice")),                //
      deleteMPIODevicePartitions(entry<decltype(::deleteMPIODevicePartitions)>(
          "deleteMPIODevicePartitions", "_Z26deleteMPIODevicePartitionsPKcPiPc")),
      getScsiDevName(entry<decltype(::getScsiDevName)>("getScsiDevName", scsiDevNameSymbol)) {}

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
