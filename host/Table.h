/* Tables and trees on a terminal, drawn by libsmartcols. */
#ifndef TABLE_H
#define TABLE_H

#include <initializer_list>
#include <memory>
#include <string>

struct libscols_line;
struct libscols_table;

/** A table with a heading. The character set of a tree's branches is that of the locale. */
class Table {
public:
    enum class Look { left, right, tree };
    struct Column {
        const char* heading;
        Look look;
    };
    /** A line in the table; the table owns it. */
    using Row = libscols_line*;

    explicit Table(std::initializer_list<Column> columns);

    /** @param parent the line that this one hangs below in the tree column, or null. */
    Row add(std::initializer_list<std::string> cells, Row parent = nullptr);

    /** All lines as they are to be printed; nothing when there is none. */
    std::string text() const;

private:
    struct Release {
        void operator()(libscols_table* table) const;
    };
    std::unique_ptr<libscols_table, Release> table_;
};

#endif
