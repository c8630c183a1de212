/* The plug-in as a host loads it. */
#ifndef LOADEDPLUGIN_H
#define LOADEDPLUGIN_H

#include <dlfcn.h>

#include "Measure.h"
#include "NrMPIO.h"

/** Finds an entry point; the library stays loaded until the program ends. */
template <typename Type>
Type* entryPoint(const char* name) {
    static void* const library = dlopen(PLUGIN_FILE, RTLD_NOW);
    require(library != nullptr, "the plug-in cannot be loaded");
    void* const found = dlsym(library, name);
    require(found != nullptr, std::string("the plug-in has no ") + name);
    return reinterpret_cast<Type*>(found);
}

#define ENTRY_POINT(name) entryPoint<decltype(name)>(#name)
#define REMOVE_PARTITIONS                                                                                    \
    entryPoint<decltype(deleteMPIODevicePartitions)>("_Z26deleteMPIODevicePartitionsPKcPiPc")
#define SCSI_NAME entryPoint<decltype(getScsiDevName)>("_Z14getScsiDevNameii")

#endif
