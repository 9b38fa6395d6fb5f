#pragma once

/* The device's configuration file: sections of string values under keys. Its text form:
 *
 *     # a comment, also with ";"
 *     [Section]
 *     key=value
 *
 * Blanks (spaces and tabs) around section, key and value are not part of them; lines end with "\n" or "\r\n". In names
 * and values "\\", "\n", "\r", "\t" and "\s" stand for a backslash, a line feed, a carriage return, a tab and a space
 * at either end, so that every value survives a save and a load byte for byte. In names "\xHH", two hexadecimal digits,
 * is the byte of that value (not 00); it is written where the byte would end the name, or turn the line into a comment,
 * a header or a byte-order mark. Any other backslash is itself. Names are compared byte by byte. Of several lines with
 * the same key the last one counts; a section that appears twice is one section; keys before the first section are in
 * the section "". A key ends at the first "=". A section's name ends at the first "]", and the rest of its line is
 * ignored. Other lines, and lines with a NUL byte, are ignored, and kept. A byte-order mark is skipped and kept.
 *
 * A file is used by one thread at a time. Loading and saving are linear in the text, and a save also lists the folder;
 * a look-up is O(1), access by index and removal O(log n). A configuration takes at most 64 times its text, an ordinary
 * one four times. A NULL file, section or key reads as absent and sets nothing. */

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A configuration in memory, with the path of the file that it was loaded from. */
typedef struct zoConfigFile zoConfigFile;

/** @return a value with its place-holders replaced: a new text, released with free. */
typedef char* (*zoStringSubstitution_t)(const char* aText);

/**
 * Loads a configuration file.
 * @param aPath  a missing file is an empty configuration; NULL keeps the configuration in memory. A relative path is
 *               resolved anew at each save.
 * @return a new configuration, released with zoConfigFile_Delete. A file that is there but can't be read gives an empty
 *         configuration, which is logged, and zoConfigFile_Save refuses to replace the file.
 */
ZOLTTOOLS_API zoConfigFile* zoConfigFile_New(const char* aPath);
/** Reads aLength bytes of text, which may hold anything, as a configuration kept in memory. A NULL text is empty.
 *  @return a new configuration, released with zoConfigFile_Delete. */
ZOLTTOOLS_API zoConfigFile* zoConfigFile_NewFromText(const char* aText, size_t aLength);
/** @return 1 when the file at the configuration's path was read or was not there, and for a configuration in memory; 0
 *          when it could not be read, and for NULL. */
ZOLTTOOLS_API int zoConfigFile_IsLoaded(const zoConfigFile* aConfigFile);
/**
 * Writes the configuration to its path, with the comments, order and other lines that it was loaded with. Atomic and
 * durable: a temporary file next to the target is flushed to disk and renamed over it, so that a crash at any point
 * leaves the old file or the new one, whole. Of programs that save the same file at once the last one counts; none
 * waits. A symbolic link stays, and what it points to is replaced, or made when it is not there yet.
 *
 * The temporary file of "device.conf" is ".device.conf.zoConfigFile-" and 16 hexadecimal digits, other ones each time.
 * A save removes those that killed programs have left: those that nobody has locked, and where that can't be found out,
 * those older than a minute. In a folder that can't be listed they stay. Other files are not touched.
 *
 * The new file keeps the mode of the old one, and its owner and group where the process may set them. A file of another
 * user therefore becomes the process's own, unless that is privileged: with the old group, if the process is a member
 * of it; else with the process's group, which then may do what everybody may. A first file has the mode 0644 less the
 * umask. Where modes can't be set (FAT, some network file systems), the new file has 0644 less the umask, or 0600 if
 * the old file kept others out. Access control lists and extended attributes are lost; another hard link goes on naming
 * the old file.
 * @return 1 when the file is written, or nothing has to be (NULL path); 0 when that failed, which is logged: the old
 *         file is then as it was, or, when only the folder could not be flushed, the new one is in its place.
 */
ZOLTTOOLS_API int zoConfigFile_Save(zoConfigFile* aConfigFile);
/** Frees the configuration without saving it; NULL is ignored. */
ZOLTTOOLS_API void zoConfigFile_Delete(zoConfigFile* aConfigFile);
/** @param aLength out: the length of the text; may be NULL.
 *  @return the text that zoConfigFile_Save writes, with a NUL after it, released with free. */
ZOLTTOOLS_API char* zoConfigFile_GetText(const zoConfigFile* aConfigFile, size_t* aLength);

/** @return the value of a key, borrowed until the key is set again or the file deleted; aDefaultValue, which may be
 *          NULL, when the key is absent. */
ZOLTTOOLS_API const char* zoConfigFile_GetString(const zoConfigFile* aConfigFile, const char* aSection,
                                                 const char* aKey, const char* aDefaultValue);
/** @return the value, or the default, after aSubstitution: a new text, released with free. NULL when the key is absent
 *          and the default is NULL. A NULL aSubstitution copies. */
ZOLTTOOLS_API char* zoConfigFile_GetStringWithSubstitution(const zoConfigFile* aConfigFile, const char* aSection,
                                                           const char* aKey, const char* aDefaultValue,
                                                           zoStringSubstitution_t aSubstitution);
/** The number that a value is: decimal, or hexadecimal with "0x"; signed where the reader is signed.
 *  @return the number; the default when the key is absent, or when its value is not a number or out of range. */
ZOLTTOOLS_API uint32 zoConfigFile_GetUInt32(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                            uint32 aDefaultValue);
/** As zoConfigFile_GetUInt32. */
ZOLTTOOLS_API uint16 zoConfigFile_GetUInt16(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                            uint16 aDefaultValue);
/** As zoConfigFile_GetUInt32. */
ZOLTTOOLS_API uint8 zoConfigFile_GetUInt8(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                          uint8 aDefaultValue);
/** As zoConfigFile_GetUInt32. */
ZOLTTOOLS_API int32 zoConfigFile_GetInt32(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                          int32 aDefaultValue);
/** @return 1 for "1", "true", "yes" and "on", 0 for "0", "false", "no", "off" and "", whatever the case of the letters;
 *          aDefaultValue when the key is absent or its value another text. */
ZOLTTOOLS_API int zoConfigFile_OptionIsSet(const zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                           int aDefaultValue);

/** Sets a key to a copy of aValue, in memory; a new key goes to the end of its section, a new section to the end of the
 *  file. A NULL value removes the key. aValue may be a value of this file. */
ZOLTTOOLS_API void zoConfigFile_SetString(zoConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                          const char* aValue);

/** @return the number of sections that hold a key or have a header. */
ZOLTTOOLS_API size_t zoConfigFile_GetSectionCount(const zoConfigFile* aConfigFile);
/** @return the name of a section, in the order of the file, borrowed until the section is removed or the file deleted;
 *          NULL past the end. */
ZOLTTOOLS_API const char* zoConfigFile_GetSectionAt(const zoConfigFile* aConfigFile, size_t anIndex);
/** @return the number of keys of a section. */
ZOLTTOOLS_API size_t zoConfigFile_GetKeyCount(const zoConfigFile* aConfigFile, const char* aSection);
/** @return a key of a section, in the order of the file, borrowed until the key is removed or the file deleted; NULL
 *          past the end. */
ZOLTTOOLS_API const char* zoConfigFile_GetKeyAt(const zoConfigFile* aConfigFile, const char* aSection, size_t anIndex);

/** A zoStringSubstitution_t that replaces each "%HOSTNAME%" with the host's name. NULL gives NULL. */
ZOLTTOOLS_API char* zoStringSubstitution_Replace_HostName(const char* aText);

#ifdef __cplusplus
}
#endif
