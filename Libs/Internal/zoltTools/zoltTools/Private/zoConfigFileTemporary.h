#pragma once

/* Temporary files next to the file that they are to replace. That of "device.conf" is called
 * ".device.conf.zoConfigFile-0123456789ABCDEF", with other digits each time, so that programs that save the same file
 * at once do not meet. Its writer keeps it locked: one that nobody has locked was left by a program that was killed.
 * A file that can't be locked or opened counts as left when it is older than a minute. */

#include <sys/types.h>
#include <zoOS/zoTypes.h>

namespace ConfigFile
{

/** Of the target's name, which is cut to it: no file system's longest name is shorter than both together. */
constexpr size_t kMaxTargetLength = 100;
constexpr size_t kTemporaryNameSize = kMaxTargetLength + sizeof("..zoConfigFile-0123456789ABCDEF");

/**
 * Makes a temporary file, locks it, and removes what others have left of the same target.
 * @param aFolder      a descriptor of the folder.
 * @param aTargetName  the name of the file that it will replace.
 * @param aMode        as open takes it.
 * @param aName        out: its name.
 * @return a descriptor to write to, which holds the lock until it is closed; -1 with errno when that failed.
 */
int NewTemporary(int aFolder, const char* aTargetName, mode_t aMode, char aName[kTemporaryNameSize]);

} // namespace ConfigFile
