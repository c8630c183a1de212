/* What holds for the whole library: how it is loaded, and that it wants a place for errors. */
#include <cstdlib>
#include <gtest/gtest.h>

#include "Caller.h"
#include "NrMPIO.h"

using world::Lines;

// A host, or another plug-in, may have symbols of the same names. The library uses its own all the
// same.
const char* _VendorName = "the host's own"; // NOLINT(bugprone-reserved-identifier)
int isMPIODevice(void*, const char*, int*, char*) {
    std::abort();
}
int deleteMPIODevicePartitions(const char*, int*, char*) {
    std::abort();
}
std::string getScsiDevName(int, int) {
    std::abort();
}

TEST(Load, vendor_name_is_writable_and_its_current_value_is_returned) {
    const Plugin plugin;
    const char** const name = plugin.symbol<const char*>("_VendorName");
    EXPECT_STREQ("Norvane: Linux Native MPIO", *name);
    *name = "another";
    EXPECT_EQ(Lines{"= \"another\""}, call(plugin, "getVendorName"));
    world::play({"run traced multipath -d  -v1 -l -> 0"});
    EXPECT_EQ(Lines{"= \"another\""}, call(plugin, "init"));
    world::finish();
}

TEST(Load, module_strings_are_built_in_order_and_destroyed_in_the_reverse) {
    world::ModuleStrings strings;
    world::watch(PLUGIN_FILE, &strings);
    { const Plugin plugin; }
    world::watch(nullptr, nullptr);
    const Lines expected{"multipath -d ",        "multipath",      "multipath -f ",
                         "multipath -d  -v1 -l", "/dev/mapper/",   "(table)",
                         "dmsetup table",        "dmsetup remove", "dmsetup deps "};
    EXPECT_EQ(expected, strings.built);
    EXPECT_EQ(Lines(expected.rbegin(), expected.rend()), strings.destroyed);
}

TEST(Load, both_names_of_getScsiDevName_are_one_function) {
    const Plugin plugin;
    EXPECT_EQ(plugin.symbol<void>("_Z14getScsiDevNameii"),
              plugin.symbol<void>("_Z14getScsiDevNameB5cxx11ii"));
}

TEST(Guard, nothing_runs_without_a_place_for_errors) {
    const Plugin plugin;
    for (const std::string entryPoint :
         {"init", "getMPIODevices count=2", "isMPIODevice m", "getUnderlyingDevices m count=2", "refreshMPIO",
          "setFailIfNoPathDevice m", "deleteMPIODevicePartitions m", "deleteMPIODevice m"}) {
        const std::string refusal = entryPoint == "init" ? "= null" : "= -1";
        world::play({});
        EXPECT_EQ(Lines{refusal}, call(plugin, entryPoint + " errCode=null")) << entryPoint;
        EXPECT_EQ(Lines{refusal}, call(plugin, entryPoint + " errCode=null errBuf=null")) << entryPoint;
        EXPECT_EQ((Lines{refusal, "errCode -1"}), call(plugin, entryPoint + " errBuf=null")) << entryPoint;
        EXPECT_EQ(Lines{}, world::finish()) << entryPoint;
    }
}
