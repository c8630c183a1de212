#include "Json.h"

#include "Output.h"

void printJson(const Json& document) {
    constexpr int indentation = 2;
    printLine(document.dump(indentation, ' ', false, Json::error_handler_t::replace));
}
