/* The calls that the *.transcript files beside this one tell. In such a file
 *
 *     == a fact                  begins a case: the call (see Caller.h), then all that happens (see
 *                                World.h), then what came back
 *     == $name                   begins a text that stands for $name from there on
 *     5 times: … end             stands for the lines between, five times
 *     <x*1024>                   stands for 1024 times "x"
 *     # …                        is a comment
 *
 * The first case of each entry point is its good path: everything works, and as much as possible is
 * asked.
 */
#ifndef TRANSCRIPTS_H
#define TRANSCRIPTS_H

#include "Caller.h"

/** One case, all that stands for something else written out. */
struct Transcript {
    std::string file;
    std::string title;
    std::string call;
    world::Lines script;
    world::Lines told;

    std::string entryPoint() const { return call.substr(0, call.find(' ')); }
    std::string text() const;
};

/** The cases of all files. */
const std::vector<Transcript>& transcripts();

/** The good path of an entry point. */
const Transcript& goodPath(const std::string& entryPoint);

/** Makes the call, and tells what really happened in the form of Transcript::text(). */
std::string play(const Plugin& plugin, const Transcript& transcript);

/** Each line with a line end. */
std::string join(const world::Lines& lines);

#endif
