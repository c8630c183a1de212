#include "Show.h"

#include <array>
#include <fmt/format.h>

#include "Diagnosis.h"
#include "Output.h"
#include "Table.h"

namespace {

/** At most one decimal and the largest unit that fits, as lsblk(8) does: "300M", "1.5G". */
std::string sizeText(unsigned long long bytes) {
    constexpr std::array<char, 7> units = {'B', 'K', 'M', 'G', 'T', 'P', 'E'};
    auto size = static_cast<double>(bytes);
    std::size_t unit = 0;
    while (size >= 1024) {
        size /= 1024;
        ++unit;
    }
    std::string number = fmt::format("{:.1f}", size);
    if (number.substr(number.size() - 2) == ".0")
        number.resize(number.size() - 2);
    return number + units[unit];
}

std::string numberText(const DeviceName& device) {
    const auto node = Node::find(device);
    return node ? fmt::format("{}:{}", node->major, node->minor) : "";
}

class Tree {
public:
    explicit Tree(const Library& library) : library_(library) {}

    void addMap(const std::string& path) {
        const DeviceName map(path);
        const auto paths = library_.paths(map);
        if (!paths)
            throw notMultipath(library_, map);
        const auto size = deviceSize(map);
        auto* const row =
            table_.add({map.base(), "map", numberText(map), size ? sizeText(*size) : "", map.text()});
        for (const std::string& disk : *paths)
            addPath(DeviceName(disk), row);
        if (const auto partitions = library_.partitions(map, false))
            for (const NrPartInfo& partition : *partitions)
                addPartition(partition, row);
    }

    std::string text() const { return table_.text(); }

private:
    void addPath(const DeviceName& disk, Table::Row map) {
        table_.add({disk.base(), "path", numberText(disk), "", disk.text()}, map);
    }

    void addPartition(const NrPartInfo& partition, Table::Row map) {
        const std::string node = partition.devName;
        if (node.empty())
            table_.add({fmt::format("partition {}", partition.sliceMinor), "unmapped", "", "", "-"}, map);
        else
            table_.add({node.substr(node.rfind('/') + 1), "part",
                        fmt::format("{}:{}", partition.devMajor, partition.devMinor),
                        sizeText(partition.size * 512), node},
                       map);
    }

    const Library& library_;
    Table table_{{"NAME", Table::Look::tree},
                 {"TYPE", Table::Look::left},
                 {"MAJ:MIN", Table::Look::right},
                 {"SIZE", Table::Look::right},
                 {"NODE", Table::Look::left}};
};

} // namespace

ExitStatus show(const Library& library, const Arguments&) {
    Tree tree(library);
    auto status = ExitStatus::success;
    for (const std::string& map : library.maps()) {
        try {
            tree.addMap(map);
        } catch (const UsageError& error) {
            tell(fmt::format("{} is listed, but {}", map, error.what()));
            status = ExitStatus::failure;
        } catch (const ToolsFailure&) {
            throw;
        } catch (const Failure& failure) {
            tell(failure.what());
            status = ExitStatus::failure;
        }
    }
    print(tree.text());
    return status;
}
