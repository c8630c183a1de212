/* The plug-in as a loaded file. */
#ifndef PLUGIN_H
#define PLUGIN_H

#include <filesystem>
#include <memory>

#include "NrMPIO.h"

/** A loaded plug-in with all its entry points. NrMPIO.h says what each does. */
class Plugin {
    using Path = std::filesystem::path;
    struct Unload {
        void operator()(void* library) const;
    };

    Path file_;
    std::unique_ptr<void, Unload> library_;

    /** An address on its way to the pointer type of the entry point. */
    struct Symbol {
        void* address;
        template <class Function>
        operator Function*() const { // NOLINT(google-explicit-constructor)
            return reinterpret_cast<Function*>(address);
        }
    };

    Symbol entry(const char* name) const { return entry(name, name); }
    Symbol entry(const char* name, const char* symbol) const;

public:
    /** @throw Failure that names the file, and the symbol where one is missing. */
    explicit Plugin(const Path& file);

    /** The plug-in that belongs to this program. @throw Failure that names the places without it. */
    static Path defaultFile();

    decltype(::getVendorName)* const getVendorName = entry("getVendorName");
    decltype(::init)* const init = entry("init");
    decltype(::getMPIODevices)* const getMPIODevices = entry("getMPIODevices");
    decltype(::isMPIODevice)* const isMPIODevice = entry("isMPIODevice");
    decltype(::getUnderlyingDevices)* const getUnderlyingDevices = entry("getUnderlyingDevices");
    decltype(::isPartitionDevice)* const isPartitionDevice = entry("isPartitionDevice");
    decltype(::getPartitionDevices)* const getPartitionDevices = entry("getPartitionDevices");
    decltype(::refreshMPIO)* const refreshMPIO = entry("refreshMPIO");
    decltype(::setFailIfNoPathDevice)* const setFailIfNoPathDevice = entry("setFailIfNoPathDevice");
    decltype(::deleteMPIODevice)* const deleteMPIODevice = entry("deleteMPIODevice");
    decltype(::deleteMPIODevicePartitions)* const deleteMPIODevicePartitions =
        entry("deleteMPIODevicePartitions", "_Z26deleteMPIODevicePartitionsPKcPiPc");
    /** Not the untagged symbol: an older plug-in may have a function there that returns another string. */
    decltype(::getScsiDevName)* const getScsiDevName = entry("getScsiDevName", "_Z14getScsiDevNameB5cxx11ii");
};

#endif
