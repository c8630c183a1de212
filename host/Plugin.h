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

    void* find(const char* entryPoint, const char* symbol) const;
    template <class Function>
    Function* entry(const char* name) const {
        return entry<Function>(name, name);
    }
    template <class Function>
    Function* entry(const char* name, const char* symbol) const {
        return reinterpret_cast<Function*>(find(name, symbol));
    }

public:
    /** @throw Failure that names the file, and the symbol where one is missing. */
    explicit Plugin(const Path& file);

    /** The plug-in that belongs to this program. @throw Failure that names the places without it. */
    static Path defaultFile();

    decltype(::getVendorName)* const getVendorName;
    decltype(::init)* const init;
    decltype(::getMPIODevices)* const getMPIODevices;
    decltype(::isMPIODevice)* const isMPIODevice;
    decltype(::getUnderlyingDevices)* const getUnderlyingDevices;
    decltype(::isPartitionDevice)* const isPartitionDevice;
    decltype(::getPartitionDevices)* const getPartitionDevices;
    decltype(::refreshMPIO)* const refreshMPIO;
    decltype(::setFailIfNoPathDevice)* const setFailIfNoPathDevice;
    decltype(::deleteMPIODevice)* const deleteMPIODevice;
    decltype(::deleteMPIODevicePartitions)* const deleteMPIODevicePartitions;
    decltype(::getScsiDevName)* const getScsiDevName;
};

#endif
