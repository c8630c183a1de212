/* Answers as JSON; docs/command.md holds their form. */
#ifndef JSON_H
#define JSON_H

#include <nlohmann/json.hpp>

/** Members stay in the order in which they were added. */
using Json = nlohmann::ordered_json;

/** Prints a document and a line end. What is no UTF-8 in a text becomes U+FFFD. */
void printJson(const Json& document);

#endif
