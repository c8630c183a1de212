/* Text from anywhere, made fit to be printed. */
#ifndef PRINTABLE_H
#define PRINTABLE_H

#include <string>
#include <string_view>

enum class CharacterSet { ascii, utf8 };

/** That of LC_CTYPE; any other than UTF-8 is taken for ASCII. */
CharacterSet localeCharacterSet();

/** The text with each byte of a control character or of what is not in the set as \xNN. */
std::string printable(std::string_view text, CharacterSet set);

#endif
