#pragma once

/* Temporary files next to the file that they are to replace. That of "device.conf" is called
 * ".device.conf.zoConfigFile-0123456789ABCDEF", with other digits each time, so that programs that save the same file
 * at once do not meet. Its writer keeps it locked: one that nobody has locked was left by a program that was killed.
 * Where files can't be locked or not be opened, one that is older than a minute was. */

#include <sys/types.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

enum
{
    kzoConfigFileTemporary_MaxTargetLength =
        100, /* of the target's name: together shorter than any file system's limit */
    kzoConfigFileTemporary_NameSize = kzoConfigFileTemporary_MaxTargetLength + sizeof("..zoConfigFile-0123456789ABCDEF")
};

/**
 * Makes a temporary file, locks it, and removes what others have left of the same target.
 * @param aFolder      a descriptor of the folder.
 * @param aTargetName  the name of the file that it will replace.
 * @param aMode        as open takes it.
 * @param aName        out: its name; kzoConfigFileTemporary_NameSize bytes.
 * @return a descriptor to write to, which holds the lock until it is closed; -1 with errno when that failed.
 */
int zoConfigFileTemporary_New(int aFolder, const char* aTargetName, mode_t aMode, char* aName);

#ifdef __cplusplus
}
#endif
