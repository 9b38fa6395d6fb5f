#pragma once

#include "CommandLine.h"

#include <UPnP/Utilities/UPnPHook.h>
#include <memory>

/* The options by which subcommands make a device hook, and tell for which client it is asked. */

struct HookDeleter
{
    void operator()(UPnPHook* aHook) const { UPnPHook_Delete(aHook); }
};
typedef std::unique_ptr<UPnPHook, HookDeleter> HookPtr;

/** @return these options and anOptions. */
std::vector<Option> HookOptionsAnd(std::vector<Option> anOptions);
/** @return what help texts say about the names of features and properties, whole lines. */
std::string HookNamesHelp();

/** @return a new hook as the options want it; NULL when they are wrong, after a message: bad usage. */
HookPtr NewHook(const Arguments& anArguments);
/** @return the client's user agent, NULL for a client without one. */
const char* UserAgent(const Arguments& anArguments);

/** The library's questions take texts as char*; it only reads them. */
inline char* AsInput(const char* aText) { return const_cast<char*>(aText); }
