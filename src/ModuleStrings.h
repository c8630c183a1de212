/* The command texts and device directories that several operations use.
 *
 * They are built when the library is loaded, in the order in which they stand here, and destroyed
 * in the reverse order when it is unloaded.
 */
#ifndef MODULESTRINGS_H
#define MODULESTRINGS_H

#include <string>

static const std::string mpiocmd = "multipath -d ";
static const std::string mpiorefresh_cmd = "multipath";
static const std::string mpioflush_cmd = "multipath -f ";
static const std::string mpiolist_cmd = mpiocmd + " -v1 -l";
static const std::string mpiodprefx = "/dev/mapper/";

/** Where the node of a device-mapper device is looked for, most specific first; "" ends the list. */
static const std::string dm_prefixes[4] = {"/dev/mpath/", "/dev/mapper/", "/dev/", ""};

static const std::string dmsetuptbl_cmd = "dmsetup table";
static const std::string dmsetuprm_cmd = "dmsetup remove";
static const std::string dmsetupdeps_cmd = "dmsetup deps ";

#endif
