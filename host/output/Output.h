/* What nrmpio says: answers on standard output, failures on standard error. */
#ifndef OUTPUT_H
#define OUTPUT_H

#include <string>
#include <string_view>

/** The text as one line: no line end at its end, those within as "; ", what is not printable as \xNN. */
std::string oneLine(std::string_view text);

/** The text as one line: line ends, tabs and returns as \n, \t, \r, what is not printable as \xNN. */
std::string escaped(std::string_view text);

/** Writes one line to standard error, "nrmpio: " and the sentence. */
void tell(std::string_view sentence);

/** Writes to standard output. */
void print(std::string_view text);

/** Writes one line to standard output. */
void printLine(std::string_view line);

/** Ends standard output. @throw Failure when not all of it could be written. */
void finishOutput();

/**
 * Opens what is closed of the descriptors 0 to 2 such that nothing can be read or written there,
 * so that no other file takes the place and receives the output.
 */
void reserveStandardDescriptors();

#endif
