#include "multipath_topology.h"

#include <algorithm>
#include <cstdio>

namespace sim {

namespace {

using Field = std::string PathLine::*;
constexpr Field Fields[] = {&PathLine::hctl,        &PathLine::name,         &PathLine::number,
                            &PathLine::kernelState, &PathLine::checkerState, &PathLine::deviceState};

/// The widths of the columns, which all paths of the map share. The last column is not padded.
std::vector<size_t> columnWidths(const std::vector<PathGroup>& groups) {
    std::vector<size_t> widths;
    for (const Field field : Fields) {
        size_t width = 0;
        for (const PathGroup& group : groups)
            for (const PathLine& path : group.paths)
                width = std::max(width, (path.*field).size());
        widths.push_back(width);
    }
    widths.back() = 0;
    return widths;
}

std::string pathText(const PathLine& path, const std::vector<size_t>& widths) {
    std::string text;
    for (size_t i = 0; i < widths.size(); ++i) {
        const std::string& value = path.*Fields[i];
        text += " " + value + std::string(widths[i] > value.size() ? widths[i] - value.size() : 0, ' ');
    }
    return text;
}

} // namespace

std::string sizeText(std::uint64_t sectors) {
    auto size = static_cast<double>(sectors) / 2;
    const char* unit = "KMGTPE";
    for (; size >= 1024 && unit[1] != '\0'; ++unit)
        size /= 1024;
    char text[32];
    std::snprintf(text, sizeof text, size < 10 ? "%.1f%c" : "%.0f%c", size, *unit);
    return text;
}

std::string Topology::text() const {
    std::string text = action + alias + " (" + wwid + ") " + device + " " + product + "\n";
    text += "size=" + sizeText(sectors) + " features='" + (queueIfNoPath ? "1 queue_if_no_path" : "0") +
            "' hwhandler='0' wp=" + access + "\n";
    const auto widths = columnWidths(groups);
    for (const PathGroup& group : groups) {
        const bool last = &group == &groups.back();
        text += std::string(last ? "`" : "|") +
                "-+- policy='service-time 0' prio=" + std::to_string(group.priority) +
                " status=" + group.state + "\n";
        for (const PathLine& path : group.paths)
            text += std::string(last ? "  " : "| ") + (&path == &group.paths.back() ? "`" : "|") + "-" +
                    pathText(path, widths) + "\n";
    }
    return text;
}

} // namespace sim
