/* Where the records go. */
#ifndef LOGDESTINATION_H
#define LOGDESTINATION_H

#include <string>

/**
 * Writes one record to the destination that is in force. Never throws, raises no signal; a record
 * that cannot be written is lost.
 *
 * @param tag  Who speaks.
 * @param text What is said. Neither holds a control character.
 */
void writeRecord(const std::string& tag, const std::string& text) noexcept;

#endif
