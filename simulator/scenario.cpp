#include "scenario.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <set>

#include <toml++/toml.h>

#include "device_number.h"
#include "image_file.h"

namespace sim {

namespace {

constexpr std::uint64_t LargestDisk = std::uint64_t{1} << 43; // bytes: 8T
constexpr unsigned MostPaths = 64;
constexpr unsigned MostUnits = 4096;
constexpr size_t LongestName = 127; // of a mapping, as the kernel knows it

/// One table of the file. Hands out its values and knows which keys nobody asked for.
class Section {
public:
    Section(const toml::table& table, std::string name, const std::string& file)
        : table_(table), name_(std::move(name)), file_(file) {}

    /// "file:line: section.key"; without a key, of the section.
    std::string origin(const std::string& key) const {
        const toml::node* node = table_.get(key);
        const auto line =
            (node != nullptr ? *node : static_cast<const toml::node&>(table_)).source().begin.line;
        const std::string separator = name_.empty() || key.empty() ? "" : ".";
        return file_ + ":" + std::to_string(line) + ": " + name_ + separator + key;
    }

    [[noreturn]] void fail(const std::string& key, const std::string& what) const {
        throw ScenarioError(origin(key) + " " + what);
    }

    const toml::node* find(const std::string& key) {
        known_.insert(key);
        return table_.get(key);
    }

    template <typename Value>
    Value get(const std::string& key, Value otherwise, const char* kind) {
        const toml::node* node = find(key);
        if (node == nullptr)
            return otherwise;
        const auto value = node->value_exact<Value>();
        if (!value)
            fail(key, std::string("must be ") + kind + ".");
        return *value;
    }
    std::string text(const std::string& key, const std::string& otherwise = "") {
        return get<std::string>(key, otherwise, "a text in quotes");
    }
    bool flag(const std::string& key, bool otherwise) { return get<bool>(key, otherwise, "true or false"); }

    std::string requiredText(const std::string& key) {
        if (find(key) == nullptr)
            fail("", "needs the key \"" + key + "\".");
        return text(key);
    }

    std::uint64_t number(const std::string& key, std::uint64_t otherwise, std::uint64_t largest) {
        const auto value = get<std::int64_t>(key, static_cast<std::int64_t>(otherwise), "a number");
        if (value < 0 || static_cast<std::uint64_t>(value) > largest)
            fail(key, "must be from 0 to " + std::to_string(largest) + ".");
        return static_cast<std::uint64_t>(value);
    }

    double seconds(const std::string& key) {
        const toml::node* node = find(key);
        const auto value = node != nullptr ? node->value<double>() : 0.0;
        if (!value || *value < 0 || *value > 86400)
            fail(key, "must be a number of seconds from 0 to 86400.");
        return *value;
    }

    /// One of the texts; the first when the key is not there.
    std::string choice(const std::string& key, const std::vector<std::string>& texts) {
        const std::string value = text(key, texts.front());
        std::string all;
        for (size_t i = 0; i < texts.size(); ++i)
            if (!texts[i].empty())
                all += (all.empty() ? "\"" : i + 1 < texts.size() ? "\", \"" : "\" or \"") + texts[i];
        if (std::find(texts.begin(), texts.end(), value) == texts.end())
            fail(key, "must be " + all + "\".");
        return value;
    }

    /// A size such as "64M", in sectors.
    std::uint64_t size(const std::string& key) {
        const std::string value = text(key, "64M");
        const auto unit = std::string("KMGT").find(value.empty() ? '?' : value.back());
        const auto count = parseNumber(value.substr(0, value.empty() ? 0 : value.size() - 1));
        if (unit == std::string::npos || !count || *count == 0 || *count > LargestDisk >> (10 * (unit + 1)))
            fail(key, "must be a size such as \"64M\", with K, M, G or T, of at most 8T.");
        return (*count << (10 * (unit + 1))) / SectorSize;
    }

    /// A name as a mapping can have it.
    std::string mappingName(const std::string& key, const std::string& value) {
        const bool printable =
            std::all_of(value.begin(), value.end(), [](unsigned char c) { return c >= 32 && c != 127; });
        if (value.empty() || nodeName(value).size() > LongestName || value.find('/') != std::string::npos ||
            !printable || value == "." || value == ".." || value == "control")
            fail(key, "must be a name of 1 to 127 characters without a \"/\".");
        return value;
    }

    /// To be called last: a key that nobody asked for is a mistake.
    void rejectUnknownKeys() const {
        for (const auto& [key, value] : table_)
            if (known_.count(std::string(key.str())) == 0)
                fail(std::string(key.str()), "is no key that a scenario knows here.");
    }

private:
    const toml::table& table_;
    std::string name_;
    const std::string& file_;
    std::set<std::string> known_;
};

class Reader {
public:
    Reader(const toml::table& root, const std::string& file) : root_(root, "", file), file_(file) {}

    Scenario read() {
        scenario_.daemon = root_.flag("daemon", false);
        if (root_.find("restore_after") != nullptr)
            scenario_.restoreAfter = static_cast<unsigned>(root_.number("restore_after", 0, 86400));
        scenario_.deviceMapper = root_.flag("device_mapper", true);
        scenario_.privileged = root_.flag("privileged", true);
        scenario_.udevPartitions = root_.flag("udev_partitions", false);
        readMissingTools();
        root_.text("title");
        each("disk", [this](Section& section) { readDisk(section); });
        each("lun", [this](Section& section) { readLuns(section); });
        each("linear", [this](Section& section) { readLinear(section); });
        each("fault", [this](Section& section) { readFault(section); });
        each("device", [this](Section& section) { readDeviceFault(section); });
        root_.rejectUnknownKeys();
        namePaths();
        return std::move(scenario_);
    }

private:
    void each(const std::string& key, const std::function<void(Section&)>& readSection) {
        const toml::node* node = root_.find(key);
        if (node == nullptr)
            return;
        const toml::array* sections = node->as_array();
        if (sections == nullptr || !sections->is_homogeneous<toml::table>())
            root_.fail(key, "must be written as [[" + key + "]].");
        for (const toml::node& element : *sections) {
            Section section(*element.as_table(), key, file_);
            readSection(section);
            section.rejectUnknownKeys();
        }
    }

    void readMissingTools() {
        const toml::node* node = root_.find("missing_tools");
        const toml::array* names = node != nullptr ? node->as_array() : nullptr;
        if (node != nullptr && names == nullptr)
            root_.fail("missing_tools", "must be a list of tools in brackets.");
        for (size_t i = 0; names != nullptr && i < names->size(); ++i) {
            const std::string tool = (*names)[i].value_or(std::string());
            if (tool != "multipath" && tool != "dmsetup" && tool != "kpartx")
                root_.fail("missing_tools", "must name multipath, dmsetup or kpartx.");
            scenario_.missingTools.push_back(tool);
        }
    }

    void claim(std::set<std::string>& taken, const Section& section, const std::string& key,
               const std::string& value) {
        if (!taken.insert(value).second)
            section.fail(key, "\"" + value + "\" is there twice.");
    }

    void claimDisk(const Section& section, const std::string& key, const std::string& name) {
        if (!diskNumber(name))
            section.fail(key, "\"" + name + "\" must be a disk's name such as \"sda\" or \"vda\".");
        claim(diskNames_, section, key, name);
    }

    void readDisk(Section& section) {
        const std::string name = section.requiredText("name");
        claimDisk(section, "name", name);
        scenario_.disks.push_back(
            {name, section.size("size"), section.text("table"), section.origin("table")});
    }

    /// A section stands for one unit, or for `count` equal ones with names and disks given one after the
    /// other.
    void readLuns(Section& section) {
        const auto count = section.number("count", 1, MostUnits);
        for (const char* key : {"alias", "wwid"})
            if (count != 1 && section.find(key) != nullptr)
                section.fail(key, "cannot be given to several units.");
        if (count == 0)
            section.fail("count", "must be at least 1.");
        for (std::uint64_t i = 0; i < count; ++i)
            readLun(section);
    }

    void readLun(Section& section) {
        const auto position = scenario_.luns.size();
        Scenario::Lun lun;
        lun.unit.alias = section.mappingName("alias", section.text("alias", defaultAlias(position)));
        claim(mappingNames_, section, "alias", lun.unit.alias);
        lun.unit.wwid = section.text("wwid", defaultWwid(position));
        if (lun.unit.wwid.empty() || lun.unit.wwid.find_first_of(" \t\n/") != std::string::npos)
            section.fail("wwid", "must be a text without blanks and \"/\".");
        claim(wwids_, section, "wwid", lun.unit.wwid);
        readPaths(section, lun);
        lun.unit.multibus = section.choice("grouping", {"failover", "multibus"}) == "multibus";
        lun.unit.queueIfNoPath = section.flag("queue_if_no_path", false);
        lun.vendor = section.text("vendor", "RIG");
        lun.product = section.text("product", "LUN");
        lun.sectors = section.size("size");
        lun.table = section.text("table");
        lun.tableOrigin = section.origin("table");
        lun.mapped = section.flag("mapped", true);
        lun.partitionsMapped = section.flag("partitions_mapped", true);
        scenario_.luns.push_back(lun);
    }

    /// The paths: a list of disk names, or how many there are. Those are named when all names are known.
    void readPaths(Section& section, Scenario::Lun& lun) {
        const toml::node* node = section.find("paths");
        const toml::array* names = node != nullptr ? node->as_array() : nullptr;
        if (names == nullptr) {
            lun.unit.paths.resize(section.number("paths", 2, MostPaths));
        } else {
            for (const toml::node& name : *names) {
                lun.unit.paths.push_back(name.value_or(std::string()));
                claimDisk(section, "paths", lun.unit.paths.back());
            }
        }
        if (lun.unit.paths.empty() || lun.unit.paths.size() > MostPaths)
            section.fail("paths", "must be from 1 to " + std::to_string(MostPaths) + " paths.");
    }

    void namePaths() {
        unsigned next = 0;
        for (Scenario::Lun& lun : scenario_.luns)
            for (std::string& path : lun.unit.paths)
                while (path.empty())
                    if (const std::string name = scsiDiskName(next++); diskNames_.insert(name).second)
                        path = name;
    }

    void readLinear(Section& section) {
        const std::string name = section.mappingName("name", section.requiredText("name"));
        const std::string device = section.requiredText("device");
        claim(mappingNames_, section, "name", name);
        const std::uint64_t most = LargestDisk / SectorSize;
        const auto start = section.number("start", 0, most);
        const auto length = section.number("length", 0, most);
        if (length == 0)
            section.fail("length", "must be a number of sectors, at least 1.");
        scenario_.linears.push_back({name, device, section.origin("device"), start, length});
    }

    void readFault(Section& section) {
        Fault fault;
        fault.command = section.requiredText("command");
        const auto most = std::numeric_limits<std::int32_t>::max();
        if (section.find("times") != nullptr)
            fault.times = static_cast<unsigned>(section.number("times", 0, most));
        if (section.find("status") != nullptr)
            fault.status = static_cast<int>(section.number("status", 0, 255));
        fault.delay = section.seconds("delay");
        fault.hang = section.flag("hang", false);
        if (section.find("print") != nullptr && !fault.status)
            fault.status = 0;
        fault.out = printed(section, section.text("stdout"));
        fault.err = section.text("stderr");
        if (!fault.status && !fault.hang && fault.delay == 0)
            section.fail("command", "needs what shall happen: status, print, delay or hang.");
        if (!fault.status && !(fault.out.empty() && fault.err.empty()))
            section.fail("", "prints something, so it needs a status, too.");
        scenario_.faults.push_back(fault);
    }

    /// What a tool prints instead, when it is not given word by word.
    static std::string printed(Section& section, const std::string& otherwise) {
        const std::string kind = section.choice("print", {"", "nothing", "garbage", "megabyte"});
        std::string text;
        if (kind == "garbage")
            for (unsigned i = 0; i < 4096; ++i)
                text += static_cast<char>((i * 167 + i / 256 * 31) & 255);
        if (kind == "megabyte")
            while (text.size() < std::size_t{1024} * 1024)
                text += otherwise.empty() ? "0123456789abcdef\n" : otherwise;
        return kind.empty() ? otherwise : text;
    }

    void readDeviceFault(Section& section) {
        Scenario::DeviceFault fault;
        fault.name = section.mappingName("name", section.requiredText("name"));
        fault.origin = section.origin("name");
        fault.node = section.choice("node", {"present", "absent", "late", "file"});
        fault.held = section.flag("held", false);
        fault.mounted = section.text("mounted");
        if (!fault.mounted.empty() && fault.mounted[0] != '/')
            section.fail("mounted", "must be the path of a directory, from \"/\" on.");
        fault.state = section.choice("state", {"running", "offline", "lost"});
        scenario_.deviceFaults.push_back(fault);
    }

    static std::string defaultAlias(size_t position) {
        return "mpath" + scsiDiskName(static_cast<unsigned>(position)).substr(2);
    }
    static std::string defaultWwid(size_t position) {
        char text[32];
        std::snprintf(text, sizeof text, "35%015zx", position + 1);
        return text;
    }

    Section root_;
    const std::string& file_;
    Scenario scenario_;
    std::set<std::string> diskNames_;
    std::set<std::string> mappingNames_;
    std::set<std::string> wwids_;
};

} // namespace

Scenario parseScenario(const std::string& text, const std::string& file) {
    try {
        const toml::table root = toml::parse(text, file);
        return Reader(root, file).read();
    } catch (const toml::parse_error& error) {
        throw ScenarioError(file + ":" + std::to_string(error.source().begin.line) +
                            ": not TOML: " + std::string(error.description()) + ".");
    }
}

} // namespace sim
