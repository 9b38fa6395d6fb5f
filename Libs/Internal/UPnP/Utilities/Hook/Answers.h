#pragma once

/* The answers to the questions of UPnPHook.h. */

#include <UPnP/Utilities/UPnPHook.h>
#include <stdarg.h>

namespace DeviceHook
{

/* The further arguments of a question. */
struct VariableArguments
{
    va_list mList;
};

/** @return false, and nothing is written, when no question has that ID. */
bool Answer(UPnPHook* aUPnPHook, int aHookID, VariableArguments* anArguments);

} // namespace DeviceHook
