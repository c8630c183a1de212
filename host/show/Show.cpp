#include "Show.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <unistd.h>

#include "Columns.h"
#include "Diagnosis.h"
#include "Dot.h"
#include "JobPool.h"
#include "MapSurvey.h"
#include "Output.h"
#include "ProgressBar.h"
#include "Table.h"

namespace {

using Format = ShowOptions::Format;
using ChosenColumns = std::vector<const ColumnInfo*>;

/** The bare name of what the listing gives as a path in /dev/mapper. */
std::string nameOf(const std::string& path) {
    const std::string directory = "/dev/mapper/";
    return path.compare(0, directory.size(), directory) == 0 ? path.substr(directory.size()) : path;
}

/** All that show finds, and tells where it does not. */
class Inventory {
public:
    Inventory(const Library& library, const Arguments& arguments) : library_(library) {
        const auto listed = arguments.devices.empty() ? library.maps() : std::vector<std::string>();
        if (!listed.empty() || !arguments.devices.empty())
            readState();
        for (const std::string& path : listed)
            addListed(path);
        for (const DeviceName& device : arguments.devices)
            addNamed(device);
        ask(arguments.show.jobs);
    }

    const std::vector<Device>& maps() const { return maps_; }
    const std::vector<std::string>& complaints() const { return complaints_; }

private:
    void readState() {
        try {
            state_ = DeviceMapper::read();
        } catch (const Failure& failure) {
            complain("states and open counts are not shown: " + explained(failure.what()));
        }
    }

    void complain(std::string sentence) { complaints_.push_back(std::move(sentence)); }

    void addListed(const std::string& path) {
        const Mapping* map = state_ ? state_->find(nameOf(path)) : nullptr;
        if (state_ && (!map || !map->isMap()))
            complain(notAMap(nameOf(path)));
        else
            add(path, map);
    }

    void addNamed(const DeviceName& device) {
        try {
            const Mapping* mapping = state_ ? state_->find(device) : nullptr;
            const Mapping* map = mapping ? state_->mapOf(*mapping) : nullptr;
            if (state_ && !map)
                throw notMultipath(library_, device);
            add(map ? "" : library_.partitionParent(device).value_or(device.text()), map);
        } catch (const ToolsFailure&) {
            throw;
        } catch (const Failure& failure) {
            complain(failure.what());
        }
    }

    /** Two devices may belong to the same map. */
    void add(const std::string& path, const Mapping* map) {
        const Subject subject{map ? map->node() : path, map};
        const bool known = std::any_of(subjects_.begin(), subjects_.end(), [&](const Subject& other) {
            return map ? other.mapping == map : other.path == subject.path;
        });
        if (!known)
            subjects_.push_back(subject);
    }

    void ask(unsigned jobs) {
        std::vector<MapReport> reports(subjects_.size());
        std::vector<std::string> failures(subjects_.size());
        const MapSurvey survey(library_, state_ ? &*state_ : nullptr);
        ProgressBar progress("maps", subjects_.size());
        parallelFor(subjects_.size(), jobs, [&](std::size_t number) {
            try {
                reports[number] = survey.ask(subjects_[number]);
            } catch (const ToolsFailure&) {
                throw;
            } catch (const Failure& failure) {
                failures[number] = failure.what();
            }
            progress.advance();
        });
        for (std::size_t number = 0; number < subjects_.size(); ++number)
            take(std::move(reports[number]), std::move(failures[number]));
    }

    void take(MapReport&& report, std::string&& failure) {
        for (std::string& complaint : report.complaints)
            complain(std::move(complaint));
        if (failure.empty())
            maps_.push_back(std::move(report.map));
        else
            complain(std::move(failure));
    }

    const Library& library_;
    std::optional<DeviceMapper> state_;
    std::vector<Subject> subjects_;
    std::vector<Device> maps_;
    std::vector<std::string> complaints_;
};

/** See https://no-color.org for the variable. */
bool colorsWanted() {
    const auto variable = [](const char* name) {
        const char* value = std::getenv(name);
        return std::string(value ? value : "");
    };
    return isatty(STDOUT_FILENO) == 1 && variable("NO_COLOR").empty() && variable("TERM") != "dumb" &&
           !variable("TERM").empty();
}

/** Lines of a table, in the formats that libsmartcols knows. */
class Listing {
public:
    Listing(const ChosenColumns& columns, const ShowOptions& options)
        : columns_(columns), bytes_(options.bytes), table_(tableColumns(columns, options), style(options)) {}

    void add(const Device& device, Table::Row parent = nullptr) {
        std::vector<std::string> cells;
        for (const ColumnInfo* column : columns_)
            cells.push_back(column->cell(device, bytes_));
        const Table::Row row = table_.add(cells, parent);
        for (std::size_t i = 0; i < columns_.size(); ++i)
            if (columns_[i]->color)
                table_.paint(row, i, columns_[i]->color(device));
        for (const Device& child : device.children)
            add(child, row);
    }

    std::string text() const { return table_.text(); }

private:
    static Table::Style style(const ShowOptions& options) {
        const auto format = options.format == Format::json    ? Table::Format::json
                            : options.format == Format::pairs ? Table::Format::pairs
                                                              : Table::Format::table;
        return {format, options.headings, format == Table::Format::table && colorsWanted(), "maps"};
    }

    /** Branches are drawn in a tree only; JSON has children whatever its columns are. */
    static std::vector<Table::Column> tableColumns(const ChosenColumns& columns, const ShowOptions& options) {
        std::vector<Table::Column> result;
        for (const ColumnInfo* column : columns) {
            result.push_back(column->column(options.bytes));
            Table::Look& look = result.back().look;
            if (look == Table::Look::tree && options.format != Format::tree)
                look = Table::Look::left;
        }
        if (options.format == Format::json)
            result.front().look = Table::Look::tree;
        return result;
    }

    const ChosenColumns& columns_;
    const bool bytes_;
    Table table_;
};

std::string listing(const std::vector<Device>& maps, const ChosenColumns& columns,
                    const ShowOptions& options) {
    Listing listing(columns, options);
    for (const Device& map : maps)
        listing.add(map);
    return listing.text();
}

/** A picture has little room. */
ChosenColumns columnsFor(const ShowOptions& options) {
    const bool short_ = options.format == Format::dot && options.columns.empty();
    return chosenColumns(short_ ? std::vector<std::string>{"NAME", "SIZE", "STATE"} : options.columns);
}

} // namespace

ExitStatus show(const Library& library, const Arguments& arguments) {
    const ShowOptions& options = arguments.show;
    const ChosenColumns columns = columnsFor(options);
    const Inventory inventory(library, arguments);
    for (const std::string& complaint : inventory.complaints())
        tell(complaint);
    print(options.format == Format::dot ? dotGraph(inventory.maps(), columns, options.bytes)
                                        : listing(inventory.maps(), columns, options));
    return inventory.complaints().empty() ? ExitStatus::success : ExitStatus::failure;
}
