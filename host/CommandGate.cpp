#include "CommandGate.h"

#include "NrProcess.h"

CommandGate::CommandGate(Mode mode) : mode_(mode) {
    NrProcess::setWatch(this);
}

CommandGate::~CommandGate() {
    NrProcess::setWatch(nullptr);
}

std::optional<CommandAnswer> CommandGate::before(const char*) {
    return std::nullopt;
}

void CommandGate::after(const char*, int) {}
