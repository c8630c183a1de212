/* The debug log as an operation sees it. */
#ifndef EVDEBUG_H
#define EVDEBUG_H

/** A log file of one's own. The plug-in never names one: it always passes null. */
class EvDebugFileInstance;

/** The log of one operation; made when the operation starts, ended when it returns. */
class __attribute__((visibility("default"))) EvDebug {
public:
    /** @param instance null for the process's common log; not owned. */
    explicit EvDebug(EvDebugFileInstance* instance);
    ~EvDebug(); // NOLINT(performance-trivially-destructible): a symbol that the plug-in calls

    EvDebug(const EvDebug&) = delete;
    EvDebug& operator=(const EvDebug&) = delete;

    /**
     * Writes one record, tagged with functionName, formatted as printf does. Whatever the text
     * holds, a record is one line: control characters are written as \n, \t, \r or \xNN.
     *
     * Nothing is written at level 0 or below. A record that cannot be formatted or written is lost
     * without a trace; the caller never notices: nothing is thrown, no signal is raised, errno
     * keeps its value.
     */
    void Debug(const char* functionName, const char* format, ...) __attribute__((format(printf, 3, 4)));
};

#endif
