#include "Table.h"

#include <cstdlib>
#include <libsmartcols.h>
#include <new>

/** libsmartcols fails only where there is no memory. */
static void check(bool worked) {
    if (!worked)
        throw std::bad_alloc();
}

void Table::Release::operator()(libscols_table* table) const {
    scols_unref_table(table);
}

static int flags(Table::Look look) {
    switch (look) {
    case Table::Look::right:
        return SCOLS_FL_RIGHT;
    case Table::Look::tree:
        return SCOLS_FL_TREE;
    default:
        return 0;
    }
}

Table::Table(std::initializer_list<Column> columns) : table_(scols_new_table()) {
    check(table_ != nullptr);
    for (const Column& column : columns)
        check(scols_table_new_column(table_.get(), column.heading, 0, flags(column.look)) != nullptr);
}

Table::Row Table::add(std::initializer_list<std::string> cells, Row parent) {
    Row row = scols_table_new_line(table_.get(), parent);
    check(row != nullptr);
    std::size_t column = 0;
    for (const std::string& cell : cells)
        check(scols_line_set_data(row, column++, cell.c_str()) == 0);
    return row;
}

std::string Table::text() const {
    if (scols_table_is_empty(table_.get()))
        return {};
    char* printed = nullptr;
    const bool worked = scols_print_table_to_string(table_.get(), &printed) == 0;
    const std::unique_ptr<char, decltype(&std::free)> owner(printed, std::free);
    check(worked && printed);
    return printed + std::string("\n");
}
