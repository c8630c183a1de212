#include "Confirmation.h"

#include <cstdio>
#include <iostream>
#include <unistd.h>

#include "ExitStatus.h"
#include "Output.h"

bool needsQuestion(const Arguments& arguments) {
    return !arguments.yes && !arguments.dryRun;
}

void requireAnswerable(const Arguments& arguments) {
    if (needsQuestion(arguments) && !(isatty(STDIN_FILENO) && isatty(STDERR_FILENO)))
        throw UsageError("there is no terminal to ask on: confirm with --yes, or look with --dry-run first");
}

bool confirmed(const std::string& question, const Arguments& arguments) {
    if (!needsQuestion(arguments))
        return true;
    const std::string prompt = question + " [y/N] ";
    std::fwrite(prompt.data(), 1, prompt.size(), stderr);
    std::string answer;
    if (!std::getline(std::cin, answer))
        std::fputc('\n', stderr);
    if (answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes" || answer == "YES")
        return true;
    tell("nothing was changed");
    return false;
}
