// A plug-in that runs its commands by itself: nrmpio sees none of them.
#include <cstdlib>
#include <string>

#include "NrMPIO.h"

const char* _VendorName = "Unwatched";

static int changed() {
    return std::system("touch changed");
}

const char* getVendorName() {
    return _VendorName;
}
const char* init(void*, int*, char*) {
    return _VendorName;
}
int getMPIODevices(void*, char**, int* count, int*, char*) {
    return *count = 0;
}
int isMPIODevice(void*, const char*, int*, char*) {
    return 1;
}
int getUnderlyingDevices(void*, const char*, char**, int* count, int*, char*) {
    return *count = 0;
}
int isPartitionDevice(void*, const char*, char*, int*, char*) {
    return 0;
}
int getPartitionDevices(void*, const char*, NrPartInfo*, int*, int, int*, char*) {
    return changed();
}
int refreshMPIO(void*, int*, char*) {
    return changed();
}
int setFailIfNoPathDevice(void*, const char*, int*, char*) {
    return changed();
}
int deleteMPIODevice(void*, const char*, int*, char*) {
    return changed();
}
int deleteMPIODevicePartitions(const char*, int*, char*) {
    return changed();
}
std::string getScsiDevName(int, int) {
    return {};
}
