#pragma once

#include "CommandLine.h"
#include "Output.h"

/* What upnputil can do. A new subcommand is a source file of its own with its constant, declared here, and a row in the
 * table of Main.cpp. */

/* How the program ends. */
enum
{
    kExit_Done = 0,
    kExit_NotFound = 1, // the input is fine, but there is nothing to say about it
    kExit_Bad = 2       // wrong usage, or an input that can't be read
};

extern const Subcommand kConfig;
extern const Subcommand kCreate;
extern const Subcommand kDescribe;
extern const Subcommand kGroup;
extern const Subcommand kHook;
extern const Subcommand kMonitor;
extern const Subcommand kSelect;
extern const Subcommand kShow;
extern const Subcommand kUnlock;
