#pragma once
// Registration of log sinks with a log manager, either for one module name (such as
// "qor_lang::manager") or, with an empty module name, for every module.

#include "framework/objects/IBase.h"
#include "framework/text/CStringArg.h"

namespace kore {

class ILog;

class ILogManager : public virtual IBase {
public:
    // Puts the sink in front of the module's sinks (or of the all-module sinks), so it is called
    // before those registered earlier. The manager holds a strong reference to the sink.
    virtual void addLog(const CStringArg& module, ILog* sink) = 0;
    // Removes the most recent registration of the sink under that module name; false when there
    // was none.
    virtual bool removeLog(const CStringArg& module, ILog* sink) = 0;
};

} // namespace kore
