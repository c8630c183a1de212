/* What holds for the whole library: how it is loaded, and that nothing makes it throw. */
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>

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
    const world::Always listingSucceeds({"", 0, true});
    EXPECT_STREQ("Norvane: Linux Native MPIO", *name);
    *name = "another";
    EXPECT_EQ(Lines{"= \"another\""}, call(plugin, "getVendorName"));
    EXPECT_EQ(Lines{"= \"another\""}, call(plugin, "init"));
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

namespace {

const char* const entryPoints[] = {
    "getVendorName",
    "init",
    "getMPIODevices count=4",
    "isMPIODevice /dev/mapper/mpatha",
    "getUnderlyingDevices /dev/mapper/mpatha count=4",
    "isPartitionDevice /dev/mapper/mpatha",
    "getPartitionDevices /dev/mapper/mpatha count=4",
    "refreshMPIO",
    "setFailIfNoPathDevice /dev/mapper/mpatha",
    "deleteMPIODevicePartitions /dev/mapper/mpatha",
    "deleteMPIODevice /dev/mapper/mpatha",
    "getScsiDevName major=8 minor=16",
};

constexpr std::size_t megabyte = 1 << 20;

struct Output {
    const char* name;
    std::string text;
};

const Output outputs[] = {
    {"empty", ""},
    {"line end only", "\n"},
    {"no colon", "0 131072 linear 253 2048\n"},
    {"no blank before the colon", "253:0 2048 0 131072 linear\n"},
    {"colon first", ":0 131072 linear\n"},
    {"colon last", "0 131072 linear 253:"},
    {"fewer tokens", "0 131072\n"},
    {"two lines", "mpatha\nmpathb\n"},
    {"NUL first", std::string("\0"
                              "0 1 linear 253:0 0 (8, 16) sda\n",
                              31)},
    {"NUL within", std::string("0 1 linear 253\0:0 0 (8,\0 16) sda\n", 33)},
    {"major only", "8, sda 8"},
    {"no digit from 1 to 9", "(0, 0) 0 0 linear 0:0 0 sd 0"},
    {"beyond 64 bits",
     "0 99999999999999999999 linear 99999999999999999999:99999999999999999999 99999999999999999999 "
     "(99999999999999999999, 99999999999999999999) sda\n"},
    {"negative", "0 1 linear -1:-1 -1 (-1, -1) sda\n"},
    {"a megabyte of digits", std::string(megabyte, '7')},
    {"a linear target and a megabyte of digits", "0 1 linear 1:" + std::string(megabyte, '7')},
    {"a dependency of a megabyte", std::string(megabyte, '7') + ", " + std::string(megabyte, '7')},
    {"a megabyte of commas", std::string(megabyte, ',')},
    {"a comma and a megabyte of blanks", "8," + std::string(megabyte, ' ')},
    {"a megabyte of letters", "sd" + std::string(megabyte, 'a')},
    {"a megabyte of high bytes", std::string(megabyte, '\xFF')},
};

/** Nothing may be written outside the caller's buffers, and no text be left without its end. */
void expectSound(const std::string& entryPoint, const Lines& told) {
    for (const std::string& line : told) {
        EXPECT_EQ(line.find("outside"), std::string::npos) << entryPoint << ": " << line.substr(0, 200);
        EXPECT_EQ(line.find("not terminated"), std::string::npos)
            << entryPoint << ": " << line.substr(0, 200);
    }
}

} // namespace

TEST(HostileOutput, nothing_throws_and_every_log_object_is_ended) {
    const Plugin plugin;
    for (const Output& output : outputs)
        for (const int status : {0, 1, -2147483647 - 1})
            for (const bool nodes : {true, false})
                for (const std::string entryPoint : entryPoints) {
                    SCOPED_TRACE(output.name + (": " + entryPoint) + ", status " + std::to_string(status));
                    const world::Always world({output.text, status, nodes});
                    EXPECT_NO_THROW(expectSound(entryPoint, call(plugin, entryPoint)));
                    EXPECT_EQ(0, world.openLogs());
                }
}

TEST(Threads, calls_may_overlap) {
    const Plugin plugin;
    const world::Always world({"0 131072 linear 253:0 2048 (8, 16) sda\n", 0, true});
    const auto callAll = [&plugin] {
        for (const std::string entryPoint : entryPoints)
            expectSound(entryPoint, call(plugin, entryPoint));
    };
    std::vector<std::thread> hosts;
    for (int i = 0; i < 4; ++i)
        hosts.emplace_back(callAll);
    for (std::thread& host : hosts)
        host.join();
    EXPECT_EQ(0, world.openLogs());
}
