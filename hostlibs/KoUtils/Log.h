/* The log as the host sets it up: where records go and how many there are. */
#ifndef LOG_H
#define LOG_H

#include <string>

/**
 * All operations may be called at any time, from any thread, and hold for the whole process.
 *
 * A record on standard error or in a file is one line, written at once:
 *
 *     2026-01-31T23:59:59.123Z [4711] isMPIODevice: text
 *
 * with the time in UTC and the number of the thread (gettid(2)). Syslog adds the time itself.
 */
class __attribute__((visibility("default"))) Log {
public:
    /** From this level on the records of operations are written: at 0, nothing is. */
    static constexpr int RecordLevel = 1;
    /** From this level on the commands that are run are traced, with status and duration. */
    static constexpr int CommandLevel = 3;
    static constexpr int DefaultLevel = 5;
    /** Above DefaultLevel, up to this one, the plug-in has every command traced. */
    static constexpr int HighestLevel = 9;

    /**
     * Sets the level of the default log writer, 0 to 9; values outside are taken for the nearest
     * one. While the host has its own writer in g_ptrLogWriter, that writer's level is in force.
     */
    static void setLevel(int level);

    /** Writes to standard error, which is the default. */
    static void toStandardError();

    /**
     * Appends to a file, which is created with mode 0640 if need be. When the file has been moved
     * or removed since, as log rotation does, the next record opens it anew.
     *
     * @return 0, or the errno of the failed open; the log then goes where it went before.
     */
    static int toFile(const std::string& path);

    /**
     * Writes to syslog(3), facility daemon, priority info.
     *
     * @param name What the records are marked with; the program's name when empty.
     */
    static void toSyslog(const std::string& name = std::string());
};

#endif
