/* The columns of show. */
#ifndef COLUMNS_H
#define COLUMNS_H

#include <string>
#include <vector>

#include "Device.h"
#include "Table.h"

struct ColumnInfo {
    const char* heading;
    const char* help;
    bool usual; ///< Shown unless columns are chosen.
    Table::Look look;
    Table::Json json;
    /** The text of a device's cell; empty for what is unknown. */
    std::string (*cell)(const Device& device, bool bytes);
    Table::Color (*color)(const Device& device) = nullptr; ///< Of a cell; null: never any.

    Table::Column column(bool bytes) const;
};

/** Red where a device does not work, yellow where it does not at the moment. */
Table::Color stateColor(const Device& device);

/** All columns, in the order of the help. */
const std::vector<ColumnInfo>& showColumns();

/** The columns with these names, in any case of letters; the usual ones for none. @throw UsageError */
std::vector<const ColumnInfo*> chosenColumns(const std::vector<std::string>& names);

#endif
