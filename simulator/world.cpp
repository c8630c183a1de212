#include "world.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "image_file.h"
#include "redirect.h"
#include "text_file.h"

namespace sim {

namespace {

UniqueFd lockFile(const std::string& path, int operation) {
    UniqueFd fd(::open(path.c_str(), O_RDWR | O_CLOEXEC));
    if (!fd.valid())
        throwErrno(path);
    while (::flock(fd.get(), operation) != 0)
        if (errno != EINTR)
            throwErrno(path);
    return fd;
}

/// The last part of a path.
std::string baseName(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

/// All paths of a unit and its map share one content. Each has a name of its own for it, which tells which of
/// them a process has open.
void shareContent(const std::string& image, const std::string& name) {
    if (::link(image.c_str(), name.c_str()) != 0)
        throwErrno(name);
}

std::string nodeText(DeviceNumber number) {
    return "block " + number.text() + "\n";
}

} // namespace

namespace {

/// The character that stands as \xNN at a position.
std::optional<char> escapedByte(const std::string& text, size_t at) {
    unsigned byte = 0;
    const bool escaped = text.compare(at, 2, "\\x") == 0 && text.size() >= at + 4 &&
                         std::from_chars(&text[at + 2], &text[at] + 4, byte, 16).ptr == &text[at] + 4;
    return escaped ? std::optional<char>(static_cast<char>(byte)) : std::nullopt;
}

/// What nodeName() was made from.
std::string nameOfNode(const std::string& node) {
    std::string name;
    for (size_t i = 0; i < node.size(); ++i) {
        const auto byte = escapedByte(node, i);
        name += byte.value_or(node[i]);
        i += byte ? 3 : 0;
    }
    return name;
}

} // namespace

std::string nodeName(const std::string& name) {
    const char digits[] = "0123456789abcdef";
    std::string node;
    for (size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        const bool plain = std::isalnum(static_cast<unsigned char>(c)) != 0 ||
                           std::strchr("#+-.:=@_", c) != nullptr || escapedByte(name, i);
        const auto byte = static_cast<unsigned char>(c);
        node += plain ? std::string(1, c) : std::string("\\x") + digits[byte >> 4] + digits[byte & 15];
    }
    return node;
}

bool Mapping::isMultipathMap() const {
    return !table.empty() && table.front().type == "multipath" && uuid.rfind("mpath-", 0) == 0;
}

// ---- locks and lookups

bool World::isThere() const {
    return ::access(path("lock").c_str(), F_OK) == 0;
}

UniqueFd World::lockForReading() const {
    return lockFile(path("lock"), LOCK_SH);
}

UniqueFd World::lockForChanges() const {
    return lockFile(path("lock"), LOCK_EX);
}

std::string World::attribute(const std::string& kernelName, const std::string& file) const {
    return readLine(blockPath(kernelName) + "/" + file);
}

std::string World::imageOf(const std::string& kernelName) const {
    return blockPath(kernelName) + "/image";
}

std::string World::linkPath(const std::string& name) const {
    return path("dev/mapper/" + nodeName(name));
}

std::optional<std::string> World::kernelName(DeviceNumber number) const {
    const auto target = readLink(path("sys/dev/block/" + number.text()));
    return target ? std::optional<std::string>(baseName(*target)) : std::nullopt;
}

std::optional<DeviceNumber> World::deviceOfNode(const std::string& path) const {
    PathBuffer place;
    if (!redirect(directory_.c_str(), path.c_str(), place))
        return std::nullopt;
    const Node node = readNode(place);
    if (node.kind != NodeKind::block)
        return std::nullopt;
    return DeviceNumber{node.major, node.minor};
}

bool World::exists(const std::string& path) const {
    PathBuffer place;
    const bool ours = redirect(directory_.c_str(), path.c_str(), place);
    struct stat status;
    return ::stat(ours ? place : path.c_str(), &status) == 0;
}

std::vector<std::string> World::holders(const std::string& kernelName) const {
    return listDirectory(blockPath(kernelName) + "/holders");
}

std::optional<Mapping> World::mapping(unsigned minor) const {
    Mapping found;
    found.minor = minor;
    const std::string directory = blockPath(found.kernelName()) + "/dm/";
    const auto name = readFile(directory + "name");
    if (!name)
        return std::nullopt;
    found.name = nameOfNode(name->substr(0, name->find('\n')));
    found.uuid = readLine(directory + "uuid");
    const auto table = parseTable(readFile(directory + "table").value_or(""));
    if (!table)
        throw WorldError(directory + "table: not a table");
    found.table = *table;
    return found;
}

std::optional<Mapping> World::mapping(const std::string& name) const {
    const auto target = readLink(path("names/" + nodeName(name)));
    if (!target)
        return std::nullopt;
    const auto minor = parseNumber(baseName(*target).substr(std::strlen("dm-")));
    return minor ? mapping(static_cast<unsigned>(*minor)) : std::nullopt;
}

std::vector<Mapping> World::mappings() const {
    std::vector<Mapping> all;
    for (const std::string& name : listDirectory(path("names")))
        if (auto found = mapping(name))
            all.push_back(std::move(*found));
    return all;
}

// ---- use

unsigned World::uses(const std::string& kernelName) const {
    unsigned count = 0;
    for (const char* mark : {"/held", "/mounted"})
        count += ::access((blockPath(kernelName) + mark).c_str(), F_OK) == 0;
    return count;
}

void World::setHeld(const Mapping& mapping, bool held) {
    const std::string mark = blockPath(mapping.kernelName()) + "/held";
    if (held)
        writeFile(mark, "");
    else
        removeFile(mark);
}

bool World::isOpen(const Mapping& mapping) const {
    if (uses(mapping.kernelName()) > 0)
        return true;
    const UniqueFd fd(::open(imageOf(mapping.kernelName()).c_str(), O_RDONLY | O_CLOEXEC));
    return fd.valid() && ::flock(fd.get(), LOCK_EX | LOCK_NB) != 0;
}

bool World::inUse(const Mapping& mapping) const {
    return !holders(mapping.kernelName()).empty() || isOpen(mapping);
}

unsigned World::openCount(const Mapping& mapping) const {
    auto count = static_cast<unsigned>(holders(mapping.kernelName()).size());
    count += uses(mapping.kernelName());
    struct stat status;
    if (::stat(imageOf(mapping.kernelName()).c_str(), &status) != 0)
        return count;
    char file[64];
    std::snprintf(file, sizeof file, "%02x:%02x:%lu", major(status.st_dev), minor(status.st_dev),
                  static_cast<unsigned long>(status.st_ino));
    for (const std::string& line : split(readFile("/proc/locks").value_or(""), "\n")) {
        const std::vector<std::string> fields = words(line); // 1: FLOCK ADVISORY READ 4711 08:01:131 0 EOF
        count += fields.size() > 5 && fields[1] == "FLOCK" && fields[5] == file;
    }
    return count;
}

// ---- changes

/// Makes a finished draft of a device's directory part of the world.
void World::publish(const std::string& draft, const std::string& kernelName, DeviceNumber number,
                    std::uint64_t sectors) {
    if (::rename(draft.c_str(), blockPath(kernelName).c_str()) != 0)
        throwErrno(blockPath(kernelName));
    makeLink("../../block/" + kernelName, path("sys/dev/block/" + number.text()));
    writeFile(path("dev/" + kernelName), nodeText(number));
    if (sectors > 0) // the kernel leaves out what has no size
        addPartitionsLine(kernelName, number, sectors);
}

void World::addDisk(const std::string& kernelName, DeviceNumber number, std::uint64_t sectors,
                    const std::string& image) {
    const std::string draft = path("draft");
    removeTree(draft);
    for (const char* directory : {"", "/holders", "/slaves"})
        makeDirectory(draft + directory);
    createFile(draft + "/dev", number.text() + "\n");
    createFile(draft + "/size", std::to_string(sectors) + "\n");
    shareContent(image, draft + "/image");
    publish(draft, kernelName, number, sectors);
}

void World::detachDisk(const std::string& kernelName) {
    const std::string number = attribute(kernelName, "dev");
    if (number.empty())
        return;
    removeFile(path("dev/" + kernelName));
    removeFile(path("sys/dev/block/" + number));
    removePartitionsLine(kernelName);
    makeDirectory(path("lost"));
    if (::rename(blockPath(kernelName).c_str(), path("lost/" + kernelName).c_str()) != 0)
        throwErrno(kernelName);
}

void World::attachDisk(const std::string& kernelName) {
    const std::string draft = path("lost/" + kernelName);
    const auto number = parseDeviceNumber(readLine(draft + "/dev"));
    if (!number)
        return;
    for (const std::string& holder : listDirectory(draft + "/holders")) {
        const auto minor = parseNumber(holder.substr(std::strlen("dm-")));
        const auto above = minor ? mapping(static_cast<unsigned>(*minor)) : std::nullopt;
        const auto used = above ? devicesOf(above->table) : std::vector<DeviceNumber>{};
        if (std::find(used.begin(), used.end(), *number) == used.end())
            removeFile(draft + "/holders/" + holder);
    }
    publish(draft, kernelName, *number, parseNumber(readLine(draft + "/size")).value_or(0));
}

void World::createContent(const std::string& image, const Table& table) const {
    if (!table.empty() && table.front().type == "multipath") {
        const auto path = kernelName(devicesOf(table).front());
        if (!path)
            throw WorldError("a map without a path that exists");
        shareContent(imageOf(*path), image);
        return;
    }
    createImage(image, sectorsOf(table));
    for (const Target& target : table) {
        const auto source = target.type == "linear" ? kernelName(devicesOf({target}).front()) : std::nullopt;
        if (source)
            copySectors(imageOf(*source), parseNumber(target.arguments.back()).value_or(0), image,
                        target.start, target.length);
    }
}

Mapping World::addMapping(const std::string& name, const std::string& uuid, const Table& table) {
    Mapping added{lowestFree_, name, uuid, table};
    while (::access(blockPath(added.kernelName()).c_str(), F_OK) == 0)
        ++added.minor;
    lowestFree_ = added.minor; // while this process works, the numbers below stay taken

    const std::string draft = path("draft");
    removeTree(draft);
    for (const char* directory : {"", "/dm", "/holders", "/slaves"})
        makeDirectory(draft + directory);
    createFile(draft + "/dev", added.number().text() + "\n");
    createFile(draft + "/size", std::to_string(sectorsOf(table)) + "\n");
    createFile(draft + "/dm/name", nodeName(name) + "\n");
    createFile(draft + "/dm/uuid", uuid + "\n");
    createFile(draft + "/dm/table", tableText(table));
    createFile(draft + "/dm/event", "0\n");
    createFile(draft + "/dm/suspended", "0\n");
    createContent(draft + "/image", table);
    for (const DeviceNumber device : devicesOf(table))
        if (const auto slave = kernelName(device))
            makeLink("../../" + *slave, draft + "/slaves/" + *slave);

    publish(draft, added.kernelName(), added.number(), sectorsOf(table));
    for (const std::string& slave : listDirectory(blockPath(added.kernelName()) + "/slaves"))
        makeLink("../../" + added.kernelName(), blockPath(slave) + "/holders/" + added.kernelName());
    makeLink("../block/" + added.kernelName(), path("names/" + nodeName(name)));
    if (!table.empty())
        ensureNode(added);
    return added;
}

void World::setTable(const Mapping& mapping, const Table& table) {
    writeFile(blockPath(mapping.kernelName()) + "/dm/table", tableText(table));
}

void World::rename(const Mapping& mapping, const std::string& name) {
    writeFile(blockPath(mapping.kernelName()) + "/dm/name", nodeName(name) + "\n");
    makeLink("../block/" + mapping.kernelName(), path("names/" + nodeName(name)));
    removeFile(path("names/" + nodeName(mapping.name)));
    removeFile(linkPath(mapping.name));
    ensureNode({mapping.minor, name, mapping.uuid, mapping.table});
}

void World::ensureNode(const Mapping& mapping) {
    struct stat status;
    const std::string kept = blockPath(mapping.kernelName()) + "/dm/no_node";
    if (::access(kept.c_str(), F_OK) != 0 && ::lstat(linkPath(mapping.name).c_str(), &status) != 0)
        makeLink("../" + mapping.kernelName(), linkPath(mapping.name));
}

void World::removeNode(const Mapping& mapping) {
    removeFile(linkPath(mapping.name));
}

void World::keepNodeAway(const Mapping& mapping) {
    writeFile(blockPath(mapping.kernelName()) + "/dm/no_node", "");
    removeNode(mapping);
}

void World::putFileInPlaceOfNode(const Mapping& mapping) {
    writeFile(linkPath(mapping.name), "not a device\n");
}

bool World::remove(const Mapping& mapping) {
    const std::string kernelName = mapping.kernelName();
    lowestFree_ = std::min(lowestFree_, mapping.minor);
    const UniqueFd image(::open(imageOf(kernelName).c_str(), O_RDONLY | O_CLOEXEC));
    if (!holders(kernelName).empty() || uses(kernelName) > 0 ||
        (image.valid() && ::flock(image.get(), LOCK_EX | LOCK_NB) != 0))
        return false;
    removeFile(linkPath(mapping.name));
    removeFile(path("dev/" + kernelName));
    removeFile(path("names/" + nodeName(mapping.name)));
    removeFile(path("sys/dev/block/" + mapping.number().text()));
    for (const std::string& slave : listDirectory(blockPath(kernelName) + "/slaves"))
        removeFile(blockPath(slave) + "/holders/" + kernelName);
    removePartitionsLine(kernelName);
    const std::string draft = path("draft");
    removeTree(draft);
    if (::rename(blockPath(kernelName).c_str(), draft.c_str()) != 0)
        throwErrno(blockPath(kernelName));
    removeTree(draft);
    return true;
}

void World::addPartitionsLine(const std::string& kernelName, DeviceNumber number, std::uint64_t sectors) {
    char line[128];
    std::snprintf(line, sizeof line, "%4u  %7u %10llu %s\n", number.major, number.minor,
                  static_cast<unsigned long long>(sectors / 2), kernelName.c_str());
    appendToFile(path("proc/partitions"), line);
}

void World::removePartitionsLine(const std::string& kernelName) {
    std::string text = readFile(path("proc/partitions")).value_or("");
    const auto name = text.find(" " + kernelName + "\n");
    if (name == std::string::npos)
        return;
    const auto start = text.rfind('\n', name) + 1;
    text.erase(start, text.find('\n', name) + 1 - start);
    writeFile(path("proc/partitions"), text);
}

} // namespace sim
