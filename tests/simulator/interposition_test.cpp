// The interposer linked into this program: which calls see the world, what they see, and that all
// others are left alone. A test here fails as soon as the linker drops the interposer.
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "redirect.h"

namespace {

namespace fs = std::filesystem;

const char Map[] = "/dev/mapper/mpatha";

void write(const fs::path& file, const std::string& text) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << text;
}

std::string read(const std::string& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class Interposition : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (fs::temp_directory_path() / "interposition-XXXXXX").string();
        ASSERT_NE(nullptr, mkdtemp(name.data()));
        world = name;
        write(world / "dev/dm-0", "block 253:0\n");
        fs::create_directories(world / "dev/mapper");
        fs::create_symlink("../dm-0", world / "dev/mapper/mpatha");
        write(world / "dev/sda", "block 8:0\n");
        write(world / "dev/sdb", "block 8:16\n"); // a node without a device
        write(world / "dev/mapper/plain", "text\n");
        write(world / "block/dm-0/image", "content of the map");
        write(world / "block/sda/image", "content of the path");
        write(world / "proc/partitions", "of the world\n");
        fs::create_directories(world / "numbers");
        fs::create_symlink("../block/dm-0", world / "numbers/253:0");
        fs::create_symlink("../block/sda", world / "numbers/8:0");
        enter();
    }
    void TearDown() override {
        leave();
        fs::remove_all(world);
    }
    void enter() { setenv(sim::WorldVariable, world.c_str(), 1); }
    void leave() { unsetenv(sim::WorldVariable); }

    /// True when no process has the map open.
    bool mapIsFree() const {
        const int fd = open((world / "block/dm-0/image").c_str(), O_RDONLY);
        const bool free = flock(fd, LOCK_EX | LOCK_NB) == 0;
        close(fd);
        return free;
    }

    fs::path world;
};

// The library's own names, for calls that the headers of this program would rename.
template <typename Function>
Function* symbol(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
}

struct StatCall {
    const char* name;
    std::function<int(const char*, struct stat*)> call;
};

using Stat = int(const char*, struct stat*);
using XStat = int(int, const char*, struct stat*);
using StatAt = int(int, const char*, struct stat*, int);

int viaStatx(const char* path, struct stat* status) {
    struct statx record {};
    const int result = statx(AT_FDCWD, path, 0, STATX_SIZE, &record);
    status->st_mode = record.stx_mode;
    status->st_rdev = makedev(record.stx_rdev_major, record.stx_rdev_minor);
    return result;
}

StatCall statAt(const char* name) {
    return {name, [name](const char* path, struct stat* status) {
                return symbol<StatAt>(name)(AT_FDCWD, path, status, 0);
            }};
}

TEST_F(Interposition, EveryFormOfStatSeesTheNodeAndWhatIsAbsent) {
    std::vector<StatCall> calls{{"statx", viaStatx}, statAt("fstatat"), statAt("fstatat64")};
    for (const char* name : {"stat", "stat64"})
        calls.push_back({name, symbol<Stat>(name)});
    for (const char* name : {"__xstat", "__xstat64"})
        calls.push_back({name, [name](const char* path, struct stat* status) {
                             return symbol<XStat>(name)(1, path, status);
                         }});
    for (const StatCall& call : calls) {
        SCOPED_TRACE(call.name);
        struct stat status {};
        ASSERT_EQ(0, call.call(Map, &status));
        EXPECT_TRUE(S_ISBLK(status.st_mode));
        EXPECT_EQ(makedev(253, 0), status.st_rdev);
        EXPECT_EQ(-1, call.call("/dev/mapper/absent", &status));
        EXPECT_EQ(ENOENT, errno);
    }
}

TEST_F(Interposition, LstatShowsTheLinkAndItsTarget) {
    for (const char* name : {"lstat", "lstat64"}) {
        struct stat status {};
        ASSERT_EQ(0, symbol<Stat>(name)(Map, &status)) << name;
        EXPECT_TRUE(S_ISLNK(status.st_mode)) << name;
    }
    char target[32] = {};
    ASSERT_EQ(7, readlink(Map, target, sizeof target));
    EXPECT_STREQ("../dm-0", target);
}

TEST_F(Interposition, AFileAmongTheNodesStaysAFile) {
    struct stat status {};
    ASSERT_EQ(0, stat("/dev/mapper/plain", &status));
    EXPECT_TRUE(S_ISREG(status.st_mode));
    EXPECT_EQ(5, status.st_size);
}

TEST_F(Interposition, OnlyPathsOfWorldsAreRedirected) {
    const struct {
        const char* path;
        const char* place; // below the world; null: left alone
    } cases[] = {
        {"/dev/mapper", "/dev/mapper"},
        {"/dev//mapper/./mpatha", "/dev/mapper/mpatha"},
        {"/dev/mapper/../dm-0", "/dev/dm-0"},
        {"/dev/mpath/x", "/dev/mpath/x"},
        {"/dev/sdaa1", "/dev/sdaa1"},
        {"/proc/partitions", "/proc/partitions"},
        {"/dev/mapper/../null", nullptr},
        {"/dev/mapperx", nullptr},
        {"/dev/dm-", nullptr},
        {"/dev/sd", nullptr},
        {"/dev/null", nullptr},
        {"/proc/self/mounts", nullptr},
        {"/home/dev/sda", nullptr},
        {"dev/sda", nullptr},
        {"", nullptr},
    };
    for (const auto& test : cases) {
        sim::PathBuffer place;
        ASSERT_EQ(test.place != nullptr, sim::redirect("/world", test.path, place)) << test.path;
        if (test.place != nullptr) {
            EXPECT_EQ(std::string("/world") + test.place, place);
        }
    }
    const std::string tooLong = "/dev/mapper/" + std::string(PATH_MAX, 'x');
    sim::PathBuffer place;
    EXPECT_FALSE(sim::redirect("/world", tooLong.c_str(), place));
}

TEST_F(Interposition, WithoutAWorldEverythingIsReal) {
    leave();
    struct stat status {};
    EXPECT_FALSE(stat("/dev/mapper/plain", &status) == 0);
    EXPECT_NE("of the world\n", read("/proc/partitions"));
}

using Open = int(const char*, int, ...);
using OpenAt = int(int, const char*, int, ...);

TEST_F(Interposition, EveryFormOfOpenReadsTheContent) {
    std::vector<std::pair<std::string, int>> opened;
    for (const char* name : {"open", "open64", "__open_2", "__open64_2"})
        opened.emplace_back(name, symbol<Open>(name)(Map, O_RDONLY));
    for (const char* name : {"openat", "openat64", "__openat_2", "__openat64_2"})
        opened.emplace_back(name, symbol<OpenAt>(name)(AT_FDCWD, Map, O_RDONLY));
    for (const auto& [name, fd] : opened) {
        char text[7] = {};
        EXPECT_EQ(7, ::read(fd, text, sizeof text)) << name;
        EXPECT_EQ("content", std::string(text, sizeof text)) << name;
        close(fd);
    }
    for (const char* name : {"fopen", "fopen64"}) {
        FILE* stream = symbol<FILE*(const char*, const char*)>(name)(Map, "r");
        ASSERT_NE(nullptr, stream) << name;
        EXPECT_EQ('c', fgetc(stream)) << name;
        fclose(stream);
    }
    EXPECT_EQ("content of the map", read(Map)); // through the C++ library
    EXPECT_EQ("of the world\n", read("/proc/partitions"));
}

TEST_F(Interposition, WritingADeviceNeverTruncatesIt) {
    for (const int flags : {O_WRONLY | O_CREAT | O_TRUNC, O_RDWR | O_TRUNC})
        close(open(Map, flags, 0600));
    FILE* stream = fopen(Map, "w");
    ASSERT_NE(nullptr, stream);
    fputs("CONTENT", stream);
    fclose(stream);
    EXPECT_EQ("CONTENT of the map", read(Map));
}

TEST_F(Interposition, ADeviceThatIsGoneCannotBeOpened) {
    EXPECT_EQ(-1, open("/dev/sdb", O_RDONLY));
    EXPECT_EQ(ENXIO, errno);
    EXPECT_EQ(-1, open("/dev/mapper/absent", O_RDONLY));
    EXPECT_EQ(ENOENT, errno);
}

TEST_F(Interposition, AnOpenMapIsInUseUntilItsLastDescriptorCloses) {
    const int fd = open(Map, O_RDONLY);
    const int copy = dup(fd);
    close(fd);
    EXPECT_FALSE(mapIsFree());
    close(copy);
    EXPECT_TRUE(mapIsFree());
    const int link = open(Map, O_PATH | O_NOFOLLOW); // no open of the device
    EXPECT_GE(link, 0);
    EXPECT_TRUE(mapIsFree());
    close(link);
}

TEST_F(Interposition, ThePathOfAMapDoesNotHoldTheMap) {
    fs::remove(world / "block/sda/image");
    fs::create_symlink("../dm-0/image", world / "block/sda/image");
    const int fd = open("/dev/sda", O_RDONLY);
    EXPECT_GE(fd, 0);
    EXPECT_TRUE(mapIsFree());
    close(fd);
}

TEST_F(Interposition, DirectoriesAreListedAndNodesTakenAway) {
    DIR* directory = opendir("/dev/mapper");
    ASSERT_NE(nullptr, directory);
    int entries = 0;
    while (readdir(directory) != nullptr)
        ++entries;
    closedir(directory);
    EXPECT_EQ(4, entries); // with "." and ".."
    EXPECT_EQ(0, access(Map, F_OK));
    EXPECT_EQ(0, unlink(Map));
    EXPECT_EQ(-1, access(Map, F_OK));
    EXPECT_EQ(0, symlink("../dm-0", Map));
    EXPECT_EQ(0, access(Map, F_OK));
}

} // namespace
