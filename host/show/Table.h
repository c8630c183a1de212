/* Tables and trees, drawn by libsmartcols. */
#ifndef TABLE_H
#define TABLE_H

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

struct libscols_line;
struct libscols_table;

/**
 * A table with a heading. The character set of a tree's branches is that of the locale; what the
 * locale or JSON cannot hold of a text is written as \xNN.
 */
class Table {
public:
    enum class Look { left, right, tree };
    /** What a cell is in JSON, where it is null when it is empty. */
    enum class Json { text, number, truth };
    enum class Format { table, pairs, json };
    enum class Color { none, red, yellow };

    struct Column {
        const char* heading;
        Look look;
        Json json = Json::text;
    };
    struct Style {
        Format format = Format::table;
        bool headings = true;
        bool colors = false;
        const char* name = ""; ///< Of the member that holds the lines in JSON.
    };
    /** A line in the table; the table owns it. */
    using Row = libscols_line*;

    explicit Table(std::initializer_list<Column> columns);
    Table(const std::vector<Column>& columns, const Style& style);

    /** @param parent the line that this one hangs below in the tree column, or null. */
    Row add(const std::vector<std::string>& cells, Row parent = nullptr);
    void paint(Row row, std::size_t column, Color color);

    /** All lines as they are to be printed; nothing when there is none, but for JSON. */
    std::string text() const;

private:
    std::string encoded(const std::string& cell) const;

    struct Release {
        void operator()(libscols_table* table) const;
    };
    Format format_;
    std::unique_ptr<libscols_table, Release> table_;
};

#endif
