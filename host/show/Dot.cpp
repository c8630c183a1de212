#include "Dot.h"

#include <fmt/format.h>

#include "Printable.h"

namespace {

/** As it stands between double quotes. */
std::string escapedForDot(const std::string& text) {
    std::string result;
    for (const char c : text)
        result += c == '"' || c == '\\' ? std::string{'\\', c} : std::string(1, c);
    return result;
}

const char* colorAttribute(const Device& device) {
    switch (stateColor(device)) {
    case Table::Color::red:
        return ", color=red";
    case Table::Color::yellow:
        return ", color=orange";
    default:
        return "";
    }
}

class Graph {
public:
    Graph(const std::vector<const ColumnInfo*>& columns, bool bytes) : columns_(columns), bytes_(bytes) {}

    void addMap(const Device& map) {
        const std::string mapId = addNode(map);
        for (const Device& child : map.children) {
            const std::string id = addNode(child);
            const bool isPath = child.type == Device::Type::path;
            text_ += fmt::format("  {} -> {};\n", isPath ? id : mapId, isPath ? mapId : id);
        }
    }

    std::string text() const {
        return "digraph maps {\n  rankdir=LR;\n  node [shape=box];\n" + text_ + "}\n";
    }

private:
    /** @return Its identifier: not the name, which may be that of several. */
    std::string addNode(const Device& device) {
        std::string id = fmt::format("n{}", nodes_++);
        text_ += fmt::format("  {} [label=\"{}\"{}];\n", id, label(device), colorAttribute(device));
        return id;
    }

    /** A line for each cell. */
    std::string label(const Device& device) const {
        std::string lines;
        for (const ColumnInfo* column : columns_)
            if (const std::string cell = column->cell(device, bytes_); !cell.empty())
                lines += (lines.empty() ? "" : "\\n") + escapedForDot(printable(cell, CharacterSet::utf8));
        return lines;
    }

    const std::vector<const ColumnInfo*>& columns_;
    const bool bytes_;
    unsigned nodes_ = 0;
    std::string text_;
};

} // namespace

std::string dotGraph(const std::vector<Device>& maps, const std::vector<const ColumnInfo*>& columns,
                     bool bytes) {
    Graph graph(columns, bytes);
    for (const Device& map : maps)
        graph.addMap(map);
    return graph.text();
}
