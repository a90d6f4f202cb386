#pragma once

#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

namespace Varnholt::TestSupport {

/// The next definition of a symbol behind ours: Qt's. A member takes its object first.
template <typename Function>
Function* NextDefinition(char const* p_Symbol)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, p_Symbol));
}

/// Hears what has been told under a key if that was waited for with success, and returns whether.
inline bool AcquireIf(bool p_Condition, void* p_Key)
{
    if (p_Condition)
        __tsan_acquire(p_Key);
    return p_Condition;
}

} // namespace Varnholt::TestSupport
