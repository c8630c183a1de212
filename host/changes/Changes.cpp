#include "Changes.h"

#include <fmt/format.h>

#include "ChangeReport.h"
#include "CommandGate.h"
#include "Confirmation.h"
#include "Diagnosis.h"
#include "Output.h"
#include "PolicyCheck.h"
#include "RemovalProgress.h"
#include "Target.h"
#include "Teardown.h"

// The library does not test what it changes: the linear mappings on any disk would go. So each
// command first finds out what it is about, then says so and asks, and only then has it done.

static void tellAll(const std::vector<std::string>& sentences) {
    for (const std::string& sentence : sentences)
        tell(sentence);
}

/** Tells a failure. */
template <class Action>
static ExitStatus attempt(Action action) {
    try {
        return action();
    } catch (const Failure& failure) {
        tell(explained(failure.what()));
        return ExitStatus::failure;
    }
}

/** Asks, does it unless there is something else by then, and reports what was done. */
template <class Action>
static ExitStatus carryOut(const std::string& question, const Target& target, const Arguments& arguments,
                           Action action) {
    auto status = ExitStatus::no;
    if (confirmed(question, arguments))
        status = attempt([&] {
            if (needsQuestion(arguments)) // The answer may have taken long.
                target.requireUnchanged();
            return action();
        });
    reportChanges(arguments, target.device());
    return status;
}

/** A failed removal is followed by what it has left. */
template <class Removal>
static ExitStatus remove(const Target& target, bool wholeMap, const std::vector<std::string>& told,
                         Removal removal) {
    CommandGate::current().permitRemoval(target.removable(wholeMap));
    const auto status = attempt([&] {
        const RemovalProgress progress(target, told);
        removal();
        return ExitStatus::success;
    });
    if (status != ExitStatus::success && !CommandGate::current().changes().empty())
        attempt([&] {
            tellAll(remains(target, wholeMap));
            return ExitStatus::success;
        });
    return status;
}

ExitStatus refresh(const Library& library, const Arguments& arguments) {
    const auto status = attempt([&] {
        library.refresh();
        return ExitStatus::success;
    });
    reportChanges(arguments, std::nullopt);
    return status;
}

/** A policy that is taken back is not what was asked for. */
static ExitStatus lookAgain(const Mapping& map, int seconds) {
    if (CommandGate::current().rehearses() || !queueingComesBack(map, seconds))
        return ExitStatus::success;
    tell(fmt::format("{} queues I/O again: the daemon's configuration asks for that and has restored it; "
                     "change no_path_retry there",
                     map.name));
    return ExitStatus::failure;
}

ExitStatus failIfNoPath(const Library& library, const Arguments& arguments) {
    requireAnswerable(arguments);
    const Target target = Target::find(library, arguments.device());
    target.requireMap();
    const auto question =
        fmt::format("Have map {} fail I/O while it has no path, not queue it?", nameAndSize(target.map()));
    return carryOut(question, target, arguments, [&] {
        library.failIfNoPath(target.device());
        return lookAgain(target.map(), arguments.recheck);
    });
}

ExitStatus deletePartitions(const Library& library, const Arguments& arguments) {
    requireAnswerable(arguments);
    const Target target = Target::find(library, arguments.device());
    target.requireMap();
    target.requireRemovable();
    if (target.mappings().empty()) {
        tell(fmt::format("{} has no partition mapping", target.map().name));
        reportChanges(arguments, target.device());
        return ExitStatus::success;
    }
    const auto told = warnings(target, false);
    tellAll(told);
    const auto question =
        fmt::format("Remove {} from map {}?", namesOf(target.mappings()), nameAndSize(target.map()));
    return carryOut(question, target, arguments, [&] {
        return remove(target, false, told, [&] { library.deletePartitions(target.device()); });
    });
}

ExitStatus deleteDevice(const Library& library, const Arguments& arguments) {
    requireAnswerable(arguments);
    const Target target = Target::find(library, arguments.device());
    target.requireRemovable();
    const auto told = warnings(target, true);
    tellAll(told);
    const auto mappings = target.mappings();
    const auto question = fmt::format("Remove map {}{}?", nameAndSize(target.map()),
                                      mappings.empty() ? "" : " with " + namesOf(mappings));
    return carryOut(question, target, arguments, [&] {
        return remove(target, true, told, [&] { library.deleteDevice(target.device()); });
    });
}
