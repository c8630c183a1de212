#include "image_file.h"

#include <algorithm>
#include <cerrno>
#include <vector>

#include <fcntl.h>

#include "text_file.h"
#include "unique_fd.h"

namespace sim {

namespace {

UniqueFd openImage(const std::string& path, int flags) {
    UniqueFd fd(::open(path.c_str(), flags | O_CLOEXEC, 0600));
    if (!fd.valid())
        throwErrno(path);
    return fd;
}

void copyBytes(int source, off_t from, int target, off_t to, off_t count) {
    std::vector<char> block(std::size_t{64} * 1024);
    while (count > 0) {
        const auto wanted = static_cast<size_t>(std::min<off_t>(count, static_cast<off_t>(block.size())));
        const ssize_t got = ::pread(source, block.data(), wanted, from);
        if (got == 0)
            return;
        if (got < 0 || ::pwrite(target, block.data(), static_cast<size_t>(got), to) != got)
            throwErrno("copying a disk image");
        from += got;
        to += got;
        count -= got;
    }
}

} // namespace

void createImage(const std::string& path, std::uint64_t sectors) {
    const UniqueFd fd = openImage(path, O_WRONLY | O_CREAT | O_TRUNC);
    if (::ftruncate(fd.get(), static_cast<off_t>(sectors * SectorSize)) != 0)
        throwErrno(path);
}

void copySectors(const std::string& source, std::uint64_t sourceSector, const std::string& target,
                 std::uint64_t targetSector, std::uint64_t sectors) {
    const UniqueFd from = openImage(source, O_RDONLY);
    const UniqueFd to = openImage(target, O_WRONLY);
    const auto start = static_cast<off_t>(sourceSector * SectorSize);
    const auto end = start + static_cast<off_t>(sectors * SectorSize);
    const off_t shift = static_cast<off_t>(targetSector * SectorSize) - start;
    for (off_t at = start; at < end;) {
        const off_t data = ::lseek(from.get(), at, SEEK_DATA); // fails where only a hole follows
        if (data < 0 || data >= end)
            return;
        const off_t hole = std::min(::lseek(from.get(), data, SEEK_HOLE), end);
        copyBytes(from.get(), data, to.get(), data + shift, hole - data);
        at = hole;
    }
}

} // namespace sim
