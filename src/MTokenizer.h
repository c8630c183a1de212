/* Splits a text, fed one character at a time, into tokens. */
#ifndef MTOKENIZER_H
#define MTOKENIZER_H

#include <cctype>
#include <string>
#include <vector>

/**
 * A function object: feed it every character of a text in order, then finalize it. A run of
 * characters that end a token counts as one, so no token is ever empty.
 */
class MTokenizer {
public:
    /**
     * @param tokenList     Receives the tokens in order of appearance; not owned.
     * @param separatorChar Ends a token, as NUL always does.
     * @param onSpace       Whitespace, as isspace(3) has it, ends a token too.
     */
    MTokenizer(std::vector<std::string>& tokenList, char separatorChar, bool onSpace)
        : tokens(tokenList), separator(separatorChar), splitOnSpace(onSpace) {}

    ~MTokenizer() { finalize(); }

    void operator()(char c) {
        if (endsToken(c))
            finalize();
        else
            current += c;
    }

    /** Hands over the pending token at the end of the text. */
    void finalize() {
        if (!current.empty())
            tokens.push_back(current);
        current.clear();
    }

private:
    bool endsToken(char c) const {
        return c == separator || c == '\0' ||
               (splitOnSpace && std::isspace(static_cast<unsigned char>(c)) != 0);
    }

    std::vector<std::string>& tokens;
    char separator;
    bool splitOnSpace;
    std::string current;
};

/** The tokens of a whole text; the arguments are those of MTokenizer. */
inline std::vector<std::string> tokenize(const std::string& text, char separator, bool splitOnSpace) {
    std::vector<std::string> tokens;
    MTokenizer tokenizer(tokens, separator, splitOnSpace);
    for (const char c : text)
        tokenizer(c);
    tokenizer.finalize();
    return tokens;
}

#endif
