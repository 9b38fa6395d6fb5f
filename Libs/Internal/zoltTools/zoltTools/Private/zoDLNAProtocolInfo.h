#pragma once

/* The record of zoDLNAProtocolInfo.h. */

#include <Shared/ASCII.h>
#include <string_view>
#include <zoOS/zoTypes.h>
#include <zoltTools/zoDLNAProtocolInfo.h>

/* A protocol info as views of its normalised text, which is one of three things: the rest of the object's own block,
 * a part of its list's block, or the caller's text. The most common transport is a view of a constant. */
struct zoDLNAProtocolInfo_t
{
    std::string_view mText; /* with a NUL in place of the ";" after the profile when mfIsCut is set */
    std::string_view mProtocol;
    std::string_view mNetwork;
    std::string_view mMimeType;       /* type/subtype */
    std::string_view mMimeParameters; /* what follows the ";" after it; without data when there is none */
    std::string_view mProfile;        /* followed by a NUL; empty when there is none */
    int mUserData;
    bool mfIsConverted;
    bool mfIsCut;
    bool mfIsOwnBlock; /* released with free */
};

namespace ProtocolInfo
{

/** True if there may be something to remove; blanks inside a field and other control bytes count, too. */
bool HasBlanks(std::string_view aText);

/** Makes an object of a text, which it may change and which must live as long as the object.
 *  @param aText  with a byte after its end, which becomes a NUL. @param afMayHaveBlanks  false if HasBlanks is. */
void Init(zoDLNAProtocolInfo_t* anInfo, char* aText, size_t aLength, bool afMayHaveBlanks);

/** @param aFields  the four fields. @return a new object, released with zoDLNAProtocolInfo_Delete. */
zoDLNAProtocolInfo_t* NewFromFields(const std::string_view* aFields);

/** Compares two fields ignoring case. Equal ones most often are the same view or the same bytes. */
inline bool IsSame(std::string_view aLeft, std::string_view aRight)
{
    if (aLeft.size() != aRight.size()) { return false; }
    return aLeft.data() == aRight.data() || Shared::Equals(aLeft, aRight) || Shared::EqualsIgnoringCase(aLeft, aRight);
}

/** True for "*". */
inline bool IsAny(std::string_view aField) { return aField.size() == 1 && aField[0] == '*'; }

} // namespace ProtocolInfo
