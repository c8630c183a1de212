/* The process's log writer, which carries the debug level. */
#ifndef CLOGWRITERINTERFACE_H
#define CLOGWRITERINTERFACE_H

#include <boost/shared_ptr.hpp>

class __attribute__((visibility("default"))) CLogWriterInterface {
public:
    virtual ~CLogWriterInterface();

    /** The current debug level, 0 (silent) to 9; see Log.h for what is written at which level. */
    virtual int getDebugLevel() = 0;
};

/**
 * The writer in force. Never null: a default writer stands here until the host sets its own,
 * which it does before it calls the plug-in from any thread. The level is then the host's
 * writer's; where records go is not its business but set in Log.h.
 */
extern __attribute__((visibility("default"))) boost::shared_ptr<CLogWriterInterface> g_ptrLogWriter;

#endif
