/* A plug-in that lacks all entry points but the first. */
#include "NrMPIO.h"

const char* getVendorName() {
    return "incomplete";
}
