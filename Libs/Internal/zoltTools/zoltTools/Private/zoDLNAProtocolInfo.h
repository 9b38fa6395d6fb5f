#pragma once

/* The record behind zoDLNAProtocolInfo.h, and the text functions that it shares with the list. */

#include <zoOS/zoTypes.h>
#include <zoltTools/zoDLNAProtocolInfo.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A piece of a text, not NUL-terminated. */
typedef struct zoDLNARun_t
{
    const char* mData;
    size_t mLength;
} zoDLNARun_t;

/* One block: this record, the MIME parameters, the text, the profile. Everything points into the block; nothing but
 * the user data changes after parsing. */
struct zoDLNAProtocolInfo_t
{
    const char* mText; /* normalised, mTextLength bytes and a NUL */
    size_t mTextLength;
    zoDLNARun_t mProtocol;
    zoDLNARun_t mNetwork;
    zoDLNARun_t mMimeType;              /* type/subtype, without the parameters */
    const zoDLNARun_t* mMimeParameters; /* sorted, ignoring case */
    size_t mMimeParameterCount;
    const char* mProfile; /* NUL-terminated; NULL without one */

    int mUserData;
    uint8 mfConverted;
    uint8 mfThumbnail;
};

/** @param aFields  the four fields. @return a new object, released with zoDLNAProtocolInfo_Delete. */
zoDLNAProtocolInfo_t* zoDLNAProtocolInfo_NewFromFields(const zoDLNARun_t* aFields);

/** @return a hash that ignores the case of ASCII letters: equal runs have equal ones. */
uint32 zoDLNARun_Hash(zoDLNARun_t aRun);
/** @return a hash of the MIME type without its parameters, whose lowest bit is set for a wild card and for nothing
 * else. */
uint32 zoDLNAProtocolInfo_HashMimeType(const zoDLNAProtocolInfo_t* anInfo);
/** @return a hash of the profile; 0 without one and never else. */
uint32 zoDLNAProtocolInfo_HashProfile(const zoDLNAProtocolInfo_t* anInfo);
/** @return below 0, 0 or above 0, ignoring the case of ASCII letters. */
int zoDLNARun_Compare(zoDLNARun_t aLeft, zoDLNARun_t aRight);
/** Whether the two are equal, ignoring the case of ASCII letters. */
int zoDLNARun_Equal(zoDLNARun_t aLeft, zoDLNARun_t aRight);
/** Whether a MIME type is "*" or ends in "/" and "*". */
int zoDLNARun_IsWildCard(zoDLNARun_t aMimeType);
/** @return the run without the blanks at its ends. */
zoDLNARun_t zoDLNARun_Trim(zoDLNARun_t aRun);
/**
 * Takes the part before the next separator off the rest. The rest's mData is NULL after the last part.
 * @param aPart out: the part without the blanks at its ends.
 * @return 0 when there was no part left.
 */
int zoDLNARun_NextPart(zoDLNARun_t* aRest, char aSeparator, zoDLNARun_t* aPart);

#ifdef __cplusplus
}
#endif
