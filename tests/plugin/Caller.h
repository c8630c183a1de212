/* A host: loads the plug-in, calls an entry point that is named in a line of text, and tells in
 * lines what came back and what was written into its memory. */
#ifndef CALLER_H
#define CALLER_H

#include "World.h"

/** The plug-in, loaded for as long as the object lives. */
class Plugin {
public:
    Plugin();
    ~Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    template <typename Type>
    Type* symbol(const char* name) const {
        return reinterpret_cast<Type*>(address(name));
    }

private:
    void* address(const char* name) const;
    void* handle;
};

/**
 * Makes the call `ENTRYPOINT [DEVICE] [count=N] [kpartx=N] [NAME=null]`, where NAME is an argument
 * that is a pointer.
 *
 * @return The result, then one line for each thing written:
 *             = 2
 *             errCode 5
 *             errBuf "text" padded           the rest of the 1024 bytes is NUL; otherwise untouched
 *             count 1
 *             devices[0] "/dev/mapper/mpatha" padded
 *             parts[0] "/dev/mapper/mpatha1" padded, slice 1, 2048+16384 x 512, 253:3
 *         A buffer that was written beyond its end, or is not terminated, is told as such.
 */
world::Lines call(const Plugin& plugin, const std::string& line);

#endif
