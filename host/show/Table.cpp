#include "Table.h"

#include <cstdlib>
#include <libsmartcols.h>
#include <new>
#include <sstream>

#include "Printable.h"

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

static int jsonType(Table::Json json) {
    switch (json) {
    case Table::Json::number:
        return SCOLS_JSON_NUMBER;
    case Table::Json::truth:
        return SCOLS_JSON_BOOLEAN_OPTIONAL;
    default:
        return SCOLS_JSON_STRING;
    }
}

static void apply(libscols_table* table, const Table::Style& style) {
    check(scols_table_set_name(table, style.name) == 0);
    scols_table_enable_json(table, style.format == Table::Format::json);
    scols_table_enable_export(table, style.format == Table::Format::pairs);
    scols_table_enable_shellvar(table, style.format == Table::Format::pairs);
    scols_table_enable_noheadings(table, !style.headings);
    scols_table_enable_colors(table, style.colors);
    scols_table_set_termforce(table, SCOLS_TERMFORCE_NEVER); // nothing is cut off at a terminal's width
    // Its own encoding would write a \x20 in a node's name as \x5cx20; pairs need it for the quoting.
    scols_table_enable_noencoding(table, style.format != Table::Format::pairs);
}

Table::Table(std::initializer_list<Column> columns) : Table(std::vector<Column>(columns), Style()) {}

Table::Table(const std::vector<Column>& columns, const Style& style)
    : format_(style.format), table_(scols_new_table()) {
    check(table_ != nullptr);
    apply(table_.get(), style);
    for (const Column& column : columns) {
        libscols_column* added = scols_table_new_column(table_.get(), column.heading, 0, flags(column.look));
        check(added != nullptr);
        check(scols_column_set_json_type(added, jsonType(column.json)) == 0);
    }
}

std::string Table::encoded(const std::string& cell) const {
    switch (format_) {
    case Format::pairs:
        return cell;
    case Format::json:
        return printable(cell, CharacterSet::utf8);
    default:
        return printable(cell, localeCharacterSet());
    }
}

Table::Row Table::add(const std::vector<std::string>& cells, Row parent) {
    Row row = scols_table_new_line(table_.get(), parent);
    check(row != nullptr);
    std::size_t column = 0;
    for (const std::string& cell : cells)
        check(scols_line_set_data(row, column++, encoded(cell).c_str()) == 0);
    return row;
}

void Table::paint(Row row, std::size_t column, Color color) {
    if (color != Color::none)
        check(scols_cell_set_color(scols_line_get_cell(row, column), color == Color::red ? "red" : "brown") ==
              0);
}

/** Empty cells at the end of a line are filled with blanks. */
static std::string withoutTrailingBlanks(const std::string& text) {
    std::istringstream lines(text);
    std::string trimmed;
    for (std::string line; std::getline(lines, line);)
        trimmed += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    return trimmed;
}

std::string Table::text() const {
    if (scols_table_is_empty(table_.get()) && format_ != Format::json)
        return {};
    char* printed = nullptr;
    const bool worked = scols_print_table_to_string(table_.get(), &printed) == 0;
    const std::unique_ptr<char, decltype(&std::free)> owner(printed, std::free);
    check(worked && printed);
    return withoutTrailingBlanks(printed);
}
