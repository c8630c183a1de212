// The interposer linked into this program: which calls see the world, what they see, and that all
// others are left alone. A test here fails as soon as the linker drops the interposer.
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "mount_table.h"
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
        write(world / "sys/block/dm-0/image", "content of the map");
        write(world / "sys/block/sda/image", "content of the path");
        write(world / "proc/partitions", "of the world\n");
        fs::create_directories(world / "sys/dev/block");
        fs::create_symlink("../../block/dm-0", world / "sys/dev/block/253:0");
        fs::create_symlink("../../block/sda", world / "sys/dev/block/8:0");
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
        const int fd = open((world / "sys/block/dm-0/image").c_str(), O_RDONLY);
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

TEST_F(Interposition, ANodeIsNoDirectory) {
    for (const char* path : {"/dev/mapper/mpatha/", "/dev/mapper/mpatha/.", "/dev/dm-0//"}) {
        struct stat status {};
        EXPECT_EQ(-1, stat(path, &status)) << path;
        EXPECT_EQ(ENOTDIR, errno) << path;
        EXPECT_EQ(-1, open(path, O_RDONLY)) << path;
        EXPECT_EQ(ENOTDIR, errno) << path;
    }
    struct stat status {};
    ASSERT_EQ(0, stat("/dev/mapper/", &status));
    EXPECT_TRUE(S_ISDIR(status.st_mode));
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
        {"/dev/mapper/", "/dev/mapper/"},
        {"/dev/sda/", "/dev/sda/"},
        {"/dev/sda/.", "/dev/sda/"},
        {"/proc/partitions", "/proc/partitions"},
        {"/proc/swaps", "/proc/swaps"},
        {"/proc/self/mountinfo", "/proc/self/mountinfo"},
        {"/proc/self/mounts", "/proc/self/mounts"},
        {"/proc/mounts", "/proc/mounts"},
        {"/sys/block", "/sys/block"},
        {"/sys/block/nvme0n1/size", "/sys/block/nvme0n1/size"},
        {"/sys/dev/block/8:0/dm/../holders", "/sys/dev/block/8:0/holders"},
        {"/sys/class/block/sda", "/sys/class/block/sda"},
        {"/dev/mapper/../null", nullptr},
        {"/dev/mapperx", nullptr},
        {"/dev/dm-", nullptr},
        {"/dev/sd", nullptr},
        {"/dev/null", nullptr},
        {"/proc/self/mountstats", nullptr},
        {"/proc/4711/mounts", nullptr},
        {"/sys/blocks", nullptr},
        {"/sys/dev/char/1:3", nullptr},
        {"/sys", nullptr},
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
    fs::remove(world / "sys/block/sda/image");
    fs::create_hard_link(world / "sys/block/dm-0/image", world / "sys/block/sda/image");
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

TEST_F(Interposition, SysfsShowsTheDevicesOfTheWorldOnly) {
    write(world / "sys/block/dm-0/dm/name", "mpatha\n");
    fs::create_directories(world / "sys/block/dm-0/holders/dm-1");
    EXPECT_EQ("mpatha\n", read("/sys/dev/block/253:0/dm/name"));
    EXPECT_EQ(0, access("/sys/dev/block/253:0/holders", R_OK));
    char target[64] = {};
    EXPECT_GT(readlink("/sys/dev/block/253:0", target, sizeof target), 0);
    EXPECT_STREQ("../../block/dm-0", target);
    const struct {
        const char* directory;
        std::set<std::string> names;
    } cases[] = {
        {"/sys/block", {"dm-0", "sda"}},
        {"/sys/dev/block", {"253:0", "8:0"}},
        {"/sys/dev/block/253:0/holders/", {"dm-1"}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.directory);
        std::set<std::string> iterated;
        for (const fs::directory_entry& entry : fs::directory_iterator(test.directory))
            iterated.insert(entry.path().filename());
        EXPECT_EQ(test.names, iterated);
        dirent** list = nullptr;
        const int count = scandir(test.directory, &list, nullptr, alphasort);
        EXPECT_EQ(test.names.size() + 2, static_cast<size_t>(count)); // with "." and ".."
        for (int i = 0; i < count; ++i)
            free(list[i]);
        free(list);
    }
}

// ---- what a process has open

/// A process that has a file open, and its descriptor as /proc names it.
class Opener {
public:
    explicit Opener(const char* path) {
        int ready[2];
        EXPECT_EQ(0, pipe(ready));
        const int fd = open(path, O_RDONLY);
        child_ = fork();
        if (child_ == 0) {
            char nothing;
            close(ready[1]);
            _exit(::read(ready[0], &nothing, 1) == 0 ? 0 : 1); // until the parent ends or closes
        }
        close(ready[0]);
        close(fd);
        end_ = ready[1];
        descriptor = "/proc/" + std::to_string(child_) + "/fd/" + std::to_string(fd);
    }
    Opener(const Opener&) = delete;
    Opener& operator=(const Opener&) = delete;
    ~Opener() {
        close(end_);
        waitpid(child_, nullptr, 0);
    }
    std::string descriptor;

private:
    pid_t child_ = -1;
    int end_ = -1;
};

TEST_F(Interposition, ADescriptorOnADeviceLooksLikeTheDeviceInEveryProcess) {
    write(world / "sys/block/other/image/text", "");
    const struct {
        std::string opened;
        dev_t number; // 0: no device
        std::string link;
    } cases[] = {
        {Map, makedev(253, 0), "/dev/dm-0"},
        {"/dev/sda", makedev(8, 0), "/dev/sda"},
        {world / "dev/mapper/plain", 0, world / "dev/mapper/plain"},
        {world / "sys/block/other/image/text", 0, world / "sys/block/other/image/text"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.opened);
        const Opener opener(test.opened.c_str());
        const char* path = opener.descriptor.c_str();
        for (const StatCall& call :
             {StatCall{"stat", symbol<Stat>("stat")}, statAt("fstatat"), StatCall{"statx", viaStatx}}) {
            struct stat status {};
            ASSERT_EQ(0, call.call(path, &status)) << call.name;
            EXPECT_EQ(test.number != 0, S_ISBLK(status.st_mode)) << call.name;
            EXPECT_EQ(test.number, status.st_rdev) << call.name;
        }
        struct stat status {};
        ASSERT_EQ(0, lstat(path, &status));
        EXPECT_TRUE(S_ISLNK(status.st_mode));
        EXPECT_EQ(test.link, fs::read_symlink(path));
        char target[6] = {};
        EXPECT_EQ(4, readlinkat(AT_FDCWD, path, target, 4)); // cut, as by the kernel
        EXPECT_EQ(test.link.substr(0, 4), target);
    }
}

TEST_F(Interposition, TheTablesOfMountsAreTheMachinesAndThenTheWorlds) {
    const std::string line = "/dev/mapper/mpatha /data ext4 rw 0 0\n";
    write(world / "proc/self/mounts", line);
    write(world / "proc/self/mountinfo", line);
    fs::create_symlink("self/mounts", world / "proc/mounts");
    for (const char* table : {"/proc/self/mounts", "/proc/mounts", "/proc/self/mountinfo"}) {
        SCOPED_TRACE(table);
        const std::string text = read(table);
        ASSERT_GT(text.size(), line.size());
        EXPECT_EQ("\n" + line, text.substr(text.size() - line.size() - 1));
    }
    const int fd = open("/proc/mounts", O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(FD_CLOEXEC, fcntl(fd, F_GETFD));
    close(fd);
}

TEST_F(Interposition, AMachinesMountIsNotTakenForOneOfADeviceOfTheWorld) {
    write(world / "machine",
          "27 1 8:0 / / rw - ext4 /dev/sda rw\n28 27 8:1 / /boot rw - ext4 /dev/sda1 rw\n");
    write(world / "mountinfo", "77 1 8:0 / /data rw - ext4 /dev/sda rw\n");
    const int fd = sim::openMountTable((world / "machine").c_str(), (world / "mountinfo").c_str(), O_RDONLY);
    char text[256] = {};
    EXPECT_GT(::read(fd, text, sizeof text - 1), 0);
    EXPECT_STREQ("27 1 0:0 / / rw - ext4 /dev/sda rw\n28 27 8:1 / /boot rw - ext4 /dev/sda1 rw\n"
                 "77 1 8:0 / /data rw - ext4 /dev/sda rw\n",
                 text);
    close(fd);
}

} // namespace
