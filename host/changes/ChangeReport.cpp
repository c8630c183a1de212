#include "ChangeReport.h"

#include "CommandGate.h"
#include "Json.h"
#include "Output.h"

void printRehearsal() {
    for (const Change& change : CommandGate::current().changes())
        printLine(change.line);
}

static Json asJson(const std::optional<DeviceName>& device) {
    Json commands = Json::array();
    Json removed = Json::array();
    for (const Change& change : CommandGate::current().changes()) {
        Json command = {{"command", change.line}};
        command["status"] = change.status ? Json(*change.status) : Json(nullptr);
        commands.push_back(std::move(command));
        if (change.status == 0 && change.command.removes())
            removed.push_back(change.command.name);
    }
    return {{"device", device ? Json(device->text()) : Json(nullptr)},
            {"dryRun", CommandGate::current().rehearses()},
            {"commands", std::move(commands)},
            {"removed", std::move(removed)}};
}

void reportChanges(const Arguments& arguments, const std::optional<DeviceName>& device) {
    if (arguments.json)
        printJson(asJson(device));
    else if (CommandGate::current().rehearses())
        printRehearsal();
}
