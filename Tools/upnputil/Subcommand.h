#pragma once

#include "Options.h"
#include "Output.h"

/* What upnputil can do. A new subcommand is a source file of its own with its function, declared here, and a row in
 * the table of Main.cpp. */

/* How the program ends. */
enum
{
    kExit_Done = 0,
    kExit_NotFound = 1, // the input is fine, but there is nothing to say about it
    kExit_Bad = 2       // wrong usage, or an input that can't be read
};

struct Subcommand
{
    const char* mName;
    const char* mSummary;
    /** @param anArguments what stands behind the subcommand's name.
     *  @return a kExit_*. */
    int (*mFunction)(const Arguments& anArguments, Output& anOutput);
};

int Create(const Arguments& anArguments, Output& anOutput);
int Describe(const Arguments& anArguments, Output& anOutput);
int GroupOfDevices(const Arguments& anArguments, Output& anOutput);
int Hook(const Arguments& anArguments, Output& anOutput);
int Monitor(const Arguments& anArguments, Output& anOutput);
int Select(const Arguments& anArguments, Output& anOutput);
int Show(const Arguments& anArguments, Output& anOutput);
int ShowConfig(const Arguments& anArguments, Output& anOutput);
int Unlock(const Arguments& anArguments, Output& anOutput);
