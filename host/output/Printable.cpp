#include "Printable.h"

#include <cstring>
#include <fmt/format.h>
#include <langinfo.h>

CharacterSet localeCharacterSet() {
    return std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0 ? CharacterSet::utf8 : CharacterSet::ascii;
}

static unsigned byteOf(char c) {
    return static_cast<unsigned char>(c);
}

static bool isControl(unsigned code) {
    return code < 0x20 || (code >= 0x7f && code < 0xa0);
}

/** The length of the character at the beginning of a text in UTF-8; 0 when there is none to be printed. */
static std::size_t printableCharacter(std::string_view text) {
    const unsigned first = byteOf(text[0]);
    if (first < 0x80)
        return isControl(first) ? 0 : 1;
    const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    constexpr unsigned lowest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (first < 0xc0 || first >= 0xf8 || text.size() < length)
        return 0;
    unsigned code = first & (0x7fU >> length);
    for (const char c : text.substr(1, length - 1)) {
        if ((byteOf(c) & 0xc0U) != 0x80)
            return 0;
        code = code << 6 | (byteOf(c) & 0x3fU);
    }
    const bool surrogate = code >= 0xd800 && code < 0xe000;
    return code < lowest[length] || code > 0x10ffff || surrogate || isControl(code) ? 0 : length;
}

std::string printable(std::string_view text, CharacterSet set) {
    std::string result;
    while (!text.empty()) {
        std::size_t length = printableCharacter(text);
        if (length > 1 && set == CharacterSet::ascii)
            length = 0;
        if (length == 0)
            result += fmt::format("\\x{:02x}", byteOf(text[0]));
        else
            result += text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return result;
}
