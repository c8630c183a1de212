#include "getPartitions.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <ostream>
#include <tuple>

#include <gtest/gtest.h>

#include "TemporaryDirectory.h"

namespace {

/** minor, start, size, container. */
using Record = std::tuple<int, uint64_t, uint64_t, int>;
using Records = std::vector<Record>;

constexpr uint64_t KiB = 1024, MiB = 1024 * KiB;

Records failure(int error) {
    return {{-error, 0, 0, 0}};
}

/** What the reader makes of a list that was not empty; its result is the list's length or a failure. */
Records partitionsOf(const std::string& device) {
    std::list<slice> slices(3, slice{1, 1, 1, 1, 1});
    const int result = getPartitions(device.c_str(), slices);
    EXPECT_EQ(std::max(result, 0), static_cast<int>(slices.size()));
    Records records;
    if (result < 0)
        records = failure(-result);
    for (const slice& s : slices) {
        EXPECT_EQ(s.major, 0);
        records.emplace_back(s.minor, s.start, s.size, s.container);
    }
    return records;
}

/** @param sectorSize in bytes; sfdisk knows no other than 512 in a file, but fdisk reads its scripts. */
void makeImage(const std::string& path, uint64_t bytes, const std::string& script,
               unsigned sectorSize = 512) {
    std::ofstream(path).close();
    ASSERT_EQ(truncate(path.c_str(), static_cast<off_t>(bytes)), 0);
    if (script.empty())
        return;
    std::ofstream(path + ".script") << script;
    std::ofstream(path + ".commands") << "I\n" << path << ".script\nw\n";
    const std::string tool = sectorSize == 512 ? "sfdisk --quiet '" + path + "' <'" + path + ".script'"
                                               : "fdisk --sector-size " + std::to_string(sectorSize) + " '" +
                                                     path + "' <'" + path + ".commands' >/dev/null";
    ASSERT_EQ(system(("PATH=$PATH:/usr/sbin:/sbin; " + tool).c_str()), 0);
}

/** Overwrites a part of a file. */
void damage(const std::string& path, uint64_t offset, const std::string& bytes) {
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(offset))
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

const char threeGpt[] = "label: gpt\nstart=2048,size=16384\nstart=18432,size=16384\nstart=34816,size=32768\n";
const char threeWithGap[] =
    "label: gpt\nunit: sectors\n128 : start=2048,size=2048\n7 : start=8192,size=4096\n";
const char withLogicals[] = "label: dos\n1 : start=2048,size=16384\n2 : start=18432,size=100352,type=5\n"
                            "5 : start=20480,size=16384\n6 : start=40960,size=16384\n";
const Records logicals = {{1, 2048, 16384, 0}, {2, 18432, 2, 0}, {5, 20480, 16384, 2}, {6, 40960, 16384, 2}};

const Records three = {{1, 2048, 16384, 0}, {2, 18432, 16384, 0}, {3, 34816, 32768, 0}};

/** Overwrites parts of a file with rubbish of a sector's length. */
std::function<void(const std::string&)> damageAt(std::vector<uint64_t> offsets) {
    return [offsets](const std::string& path) {
        for (const uint64_t offset : offsets)
            damage(path, offset, std::string(512, 'x'));
    };
}

std::function<void(const std::string&)> resizeTo(uint64_t bytes) {
    return
        [bytes](const std::string& path) { EXPECT_EQ(truncate(path.c_str(), static_cast<off_t>(bytes)), 0); };
}

struct Case {
    const char* name;
    uint64_t bytes;
    std::string script;
    Records expected;
    std::function<void(const std::string&)> then = [](const std::string&) {};
    unsigned sectorSize = 512; // bytes
};

void PrintTo(const Case& c, std::ostream* stream) {
    *stream << c.name;
}

const Case cases[] = {
    {"NoTable", 64 * MiB, "", {}},
    {"EmptyFile", 0, "", {}},
    {"LessThanASector", 100, "", {}},
    {"Gpt", 64 * MiB, threeGpt, three},
    {"GptWithGapsInTheNumbers", 64 * MiB, threeWithGap, {{7, 8192, 4096, 0}, {128, 2048, 2048, 0}}},
    {"GptWithoutPartitions", 64 * MiB, "label: gpt\n", {}},
    {"GptOf4096ByteSectors",
     64 * MiB,
     "label: gpt\nstart=256,size=256\nstart=512,size=1024\n",
     {{1, 2048, 2048, 0}, {2, 4096, 8192, 0}},
     [](const std::string&) {},
     4096},
    {"GptWithDamagedPrimary", 64 * MiB, threeGpt, three, damageAt({512})},
    {"GptWithDamagedPrimaryEntries", 64 * MiB, threeGpt, three, damageAt({1024})},
    {"GptWithDamagedBackup", 64 * MiB, threeGpt, three, damageAt({64 * MiB - 512})},
    {"GptWithBothDamaged", 64 * MiB, threeGpt, failure(EUCLEAN), damageAt({512, 64 * MiB - 512})},
    {"GptOfAnotherTable", 64 * MiB, threeGpt, {}, damageAt({0})},
    {"GptOnADiskThatHasGrown", 64 * MiB, threeGpt, three, resizeTo(128 * MiB)},
    {"GptLargerThanTheDisk", 64 * MiB, threeGpt, failure(EUCLEAN), resizeTo(20 * MiB)},
    // The protective entry and, after it, an entry of the DOS table for the first GPT partition.
    {"HybridCountsAsGpt", 64 * MiB, threeGpt, three,
     [](const std::string& path) {
         damage(path, 446 + 16, std::string("\0\0\x02\0\x83\xff\xff\xff\0\x08\0\0\0\x40\0\0", 16));
     }},
    {"DosPrimaries",
     64 * MiB,
     "label: dos\n1 : start=2048,size=2048\n3 : start=8192,size=8\n4 : start=4096,size=1\n",
     {{1, 2048, 2048, 0}, {3, 8192, 8, 0}, {4, 4096, 1, 0}}},
    {"DosWithLogicals", 64 * MiB, withLogicals, logicals},
    {"DosExtendedFirst",
     64 * MiB,
     "label: dos\n1 : start=20480,size=40960,type=f\n4 : start=2048,size=2048\n5 : start=22528,size=2048\n",
     {{1, 20480, 2, 0}, {4, 2048, 2048, 0}, {5, 22528, 2048, 1}}},
    {"DosAsLargeAsTheDisk", 64 * MiB, withLogicals, logicals, resizeTo(118784UL * 512)},
    {"DosWithLogicalsBeyondTheDisk", 64 * MiB, withLogicals, failure(EUCLEAN), resizeTo(15 * MiB)},
    {"DosLargerThanTheDisk", 64 * MiB, "label: dos\nstart=2048,size=16384\n", failure(EUCLEAN),
     resizeTo(18431UL * 512)},
    {"BeyondTwoTiB",
     6 * MiB* MiB,
     "label: gpt\nstart=2048,size=6442450944\nstart=6442452992,size=8\n",
     {{1, 2048, 6442450944, 0}, {2, 6442452992, 8, 0}}},
};

class Table : public testing::TestWithParam<Case> {};
INSTANTIATE_TEST_SUITE_P(GetPartitions, Table, testing::ValuesIn(cases),
                         [](const auto& i) { return i.param.name; });

TEST_P(Table, IsReadFromAnImage) {
    const TemporaryDirectory directory;
    const std::string path = directory.file("disk image");
    makeImage(path, GetParam().bytes, GetParam().script, GetParam().sectorSize);
    GetParam().then(path);
    EXPECT_EQ(partitionsOf(path), GetParam().expected);
    EXPECT_EQ(partitionsOf(path), GetParam().expected);
}

/** A loop device is what comes nearest to a disk; it takes root and a kernel that has them. */
TEST(GetPartitions, ReadsABlockDeviceOfAnySectorSize) {
    const struct {
        const char* script;
        unsigned tableSectorSize, sectorSize; // bytes
        Records expected;
    } devices[] = {
        {withLogicals, 512, 512, logicals},
        {"label: dos\n1 : start=256,size=256\n2 : start=512,size=8192,type=5\n5 : start=768,size=256\n",
         4096,
         4096,
         {{1, 2048, 2048, 0}, {2, 4096, 2, 0}, {5, 6144, 2048, 2}}},
        {"label: gpt\nstart=256,size=256\n", 4096, 4096, {{1, 2048, 2048, 0}}},
        {"label: gpt\nstart=256,size=256\n", 4096, 512, failure(EUCLEAN)},
    };
    for (const auto& d : devices) {
        const TemporaryDirectory directory;
        const std::string image = directory.file("disk"), name = directory.file("name");
        makeImage(image, 64 * MiB, d.script, d.tableSectorSize);
        const std::string attach = std::string("PATH=$PATH:/usr/sbin:/sbin losetup --show -f -b ") +
                                   std::to_string(d.sectorSize) + " '" + image + "' >'" + name +
                                   "' 2>/dev/null";
        if (system(attach.c_str()) != 0)
            GTEST_SKIP() << "no loop device can be had here";
        const std::string device = linesOf(name).at(0);
        EXPECT_EQ(partitionsOf(device), d.expected) << d.sectorSize;
        EXPECT_EQ(system(("PATH=$PATH:/usr/sbin:/sbin losetup -d " + device).c_str()), 0);
    }
}

TEST(GetPartitions, WhatCannotBeReadIsANegativeErrno) {
    const TemporaryDirectory directory;
    makeImage(directory.file("secret"), MiB, "");
    chmod(directory.file("secret").c_str(), 0);
    ASSERT_EQ(mkfifo(directory.file("fifo").c_str(), 0600), 0);
    const struct {
        std::string device;
        int result;
    } devices[] = {
        {directory.file("absent"), -ENOENT},
        {"", -ENOENT},
        {directory.file("secret/below"), -ENOTDIR},
        {directory.file("secret"), geteuid() == 0 ? 0 : -EACCES},
        {directory.file(""), -ENOTBLK},
        {directory.file("fifo"), -ENOTBLK},
        {"/dev/null", -ENOTBLK},
        {"/proc/self/mem", -EIO}, // a regular file whose first byte cannot be read
    };
    for (const auto& d : devices) {
        std::list<slice> slices(2);
        EXPECT_EQ(getPartitions(d.device.c_str(), slices), d.result) << d.device;
        EXPECT_TRUE(slices.empty()) << d.device;
    }
    std::list<slice> slices(2);
    EXPECT_EQ(getPartitions(nullptr, slices), -EFAULT);
    EXPECT_TRUE(slices.empty());
}

TEST(GetPartitions, KeepsNoDescriptorOpen) {
    const TemporaryDirectory directory;
    makeImage(directory.file("disk"), 64 * MiB, withLogicals);
    const int next = dup(0);
    close(next);
    for (const char* device : {"disk", "absent", "", "disk/x"}) {
        std::list<slice> slices;
        getPartitions(directory.file(device).c_str(), slices);
    }
    const int after = dup(0);
    close(after);
    EXPECT_EQ(after, next);
}

} // namespace
