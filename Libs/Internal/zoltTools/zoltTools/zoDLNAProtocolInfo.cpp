#include <zoltTools/zoDLNAProtocolInfo.h>

#include <algorithm>
#include <iterator>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <zoltTools/Private/zoDLNAProtocolInfo.h>
#include <zoltTools/zoMemory.h>

namespace
{

using Run = zoDLNARun_t;

const int kFieldCount = 4;

// The fields of a text without their blanks. The first mCount are there, the others are missing and empty.
struct Fields
{
    Run mField[kFieldCount];
    int mCount;
    bool mfHasBlanks; // perhaps; inside the fields, too
    Run mWhole;       // the text that the fields are in, when nothing is to be removed from it; else none
};

// What is looked for in the fourth field; the first of a name counts.
struct Parameters
{
    Run mProfile;
    Run mConverted;
    bool mfHasBlanks; // around a parameter
};

enum Field
{
    kField_Protocol,
    kField_Network,
    kField_MimeType,
    kField_Additional
};

} // namespace

// ---- Runs of text ----

static char ToLower(char aCharacter)
{
    return aCharacter >= 'A' && aCharacter <= 'Z' ? static_cast<char>(aCharacter + ('a' - 'A')) : aCharacter;
}

static bool IsBlank(char aCharacter)
{
    return aCharacter == ' ' || aCharacter == '\t' || aCharacter == '\r' || aCharacter == '\n';
}

// Setting bit 5 of each byte makes letters of either case equal; that it makes some others equal, too, does no harm.
static uint32 AddToHash(uint32 aHash, const char* aBytes, size_t aCount)
{
    uint32 theWord = 0;
    memcpy(&theWord, aBytes, aCount);
    const uint32 theHash = (aHash ^ (theWord | 0x20202020u)) * 0x9E3779B1u;
    return theHash ^ (theHash >> 15);
}

uint32 zoDLNARun_Hash(Run aRun)
{
    uint32 theHash = static_cast<uint32>(aRun.mLength);
    size_t i = 0;
    for (; aRun.mLength - i >= sizeof(uint32); i += sizeof(uint32))
        theHash = AddToHash(theHash, aRun.mData + i, sizeof(uint32));
    return i < aRun.mLength ? AddToHash(theHash, aRun.mData + i, aRun.mLength - i) : theHash;
}

int zoDLNARun_Compare(Run aLeft, Run aRight)
{
    const size_t theLength = std::min(aLeft.mLength, aRight.mLength);
    for (size_t i = 0; i < theLength; ++i)
    {
        const int theDifference = ToLower(aLeft.mData[i]) - ToLower(aRight.mData[i]);
        if (theDifference != 0) { return theDifference; }
    }
    return (aLeft.mLength > theLength) - (aRight.mLength > theLength);
}

int zoDLNARun_Equal(Run aLeft, Run aRight)
{
    if (aLeft.mLength != aRight.mLength) { return 0; }
    return memcmp(aLeft.mData, aRight.mData, aLeft.mLength) == 0 || zoDLNARun_Compare(aLeft, aRight) == 0;
}

Run zoDLNARun_Trim(Run aRun)
{
    for (; aRun.mLength > 0 && IsBlank(aRun.mData[0]); --aRun.mLength)
        ++aRun.mData;
    while (aRun.mLength > 0 && IsBlank(aRun.mData[aRun.mLength - 1]))
        --aRun.mLength;
    return aRun;
}

// As NextPart, with the blanks.
static bool NextPiece(Run* aRest, char aSeparator, Run* aPiece)
{
    if (!aRest->mData) { return false; }
    *aPiece = *aRest;
    const void* theSeparator = memchr(aRest->mData, aSeparator, aRest->mLength);
    if (!theSeparator)
    {
        *aRest = { nullptr, 0 };
        return true;
    }
    aPiece->mLength = static_cast<size_t>(static_cast<const char*>(theSeparator) - aRest->mData);
    *aRest = { aRest->mData + aPiece->mLength + 1, aRest->mLength - aPiece->mLength - 1 };
    return true;
}

int zoDLNARun_NextPart(Run* aRest, char aSeparator, Run* aPart)
{
    if (!NextPiece(aRest, aSeparator, aPart)) { return 0; }
    *aPart = zoDLNARun_Trim(*aPart);
    return 1;
}

// ---- From text to fields ----

// Whether one of eight bytes is a blank or another control byte.
static uint64 HasBlank(const char* aBytes)
{
    uint64 theWord;
    memcpy(&theWord, aBytes, sizeof(theWord));
    return (theWord - 0x2121212121212121u) & ~theWord & 0x8080808080808080u;
}

static bool HasBlanks(Run aText)
{
    uint64 theBlanks = 0;
    const char* theEnd = aText.mData + aText.mLength;
    if (aText.mLength < sizeof(uint64)) { return std::any_of(aText.mData, theEnd, IsBlank); }
    for (const char* theWord = aText.mData; theWord < theEnd - sizeof(uint64); theWord += sizeof(uint64))
        theBlanks |= HasBlank(theWord);
    return (theBlanks | HasBlank(theEnd - sizeof(uint64))) != 0;
}

static void SplitFields(Fields* aFields, Run aText)
{
    const bool fHasBlanks = HasBlanks(aText);
    Run theRest = aText;
    int theCount = 0;
    while (theCount < kField_Additional && NextPiece(&theRest, ':', &aFields->mField[theCount]))
        ++theCount;
    if (theRest.mData) { aFields->mField[theCount++] = theRest; }
    for (int i = 0; fHasBlanks && i < theCount; ++i)
        aFields->mField[i] = zoDLNARun_Trim(aFields->mField[i]);
    for (int i = theCount; i < kFieldCount; ++i)
        aFields->mField[i] = { "", 0 };
    aFields->mCount = theCount;
    aFields->mfHasBlanks = fHasBlanks;
    aFields->mWhole = fHasBlanks ? Run{ nullptr, 0 } : aText;
}

// Where the value of a parameter belongs, when it is one that is looked for and not yet found; else NULL. Both names
// are "DLNA.ORG_" and two letters; the letters tell most parameters apart.
static Run* TargetOf(Parameters* aParameters, Run aParameter)
{
    const Run thePrefix = { "DLNA.ORG_", 9 };
    const size_t kNameLength = 11;
    if (aParameter.mLength <= kNameLength || aParameter.mData[kNameLength] != '=') { return nullptr; }
    const char theFirst = ToLower(aParameter.mData[kNameLength - 2]);
    const char theSecond = ToLower(aParameter.mData[kNameLength - 1]);
    Run* theTarget = theFirst == 'p' && theSecond == 'n'   ? &aParameters->mProfile
                     : theFirst == 'c' && theSecond == 'i' ? &aParameters->mConverted
                                                           : nullptr;
    if (!theTarget || theTarget->mData) { return nullptr; }
    const bool fHasPrefix = memcmp(aParameter.mData, thePrefix.mData, thePrefix.mLength) == 0 ||
                            zoDLNARun_Equal({ aParameter.mData, thePrefix.mLength }, thePrefix);
    return fHasPrefix ? theTarget : nullptr;
}

static Parameters ReadParameters(const Fields& aFields)
{
    const size_t kValueBegin = 12;
    Parameters theParameters = {};
    Run theRest = aFields.mField[kField_Additional];
    Run thePiece;
    while (NextPiece(&theRest, ';', &thePiece))
    {
        const Run thePart = aFields.mfHasBlanks ? zoDLNARun_Trim(thePiece) : thePiece;
        if (thePart.mLength != thePiece.mLength) { theParameters.mfHasBlanks = true; }
        Run* theTarget = TargetOf(&theParameters, thePart);
        if (theTarget) { *theTarget = { thePart.mData + kValueBegin, thePart.mLength - kValueBegin }; }
    }
    return theParameters;
}

// ---- Building the block ----

static Run AppendRun(char** anEnd, Run aRun)
{
    const Run theCopy = { *anEnd, aRun.mLength };
    memcpy(*anEnd, aRun.mData, aRun.mLength);
    *anEnd += aRun.mLength;
    return theCopy;
}

static void AppendParameters(char** anEnd, Run anAdditional)
{
    Run thePart;
    for (bool fIsFirst = true; zoDLNARun_NextPart(&anAdditional, ';', &thePart); fIsFirst = false)
    {
        if (!fIsFirst) { *(*anEnd)++ = ';'; }
        AppendRun(anEnd, thePart);
    }
}

// Writes the text, which needs no change, at anEnd and points the first three fields at it.
static void WriteWhole(char** anEnd, Fields* aFields)
{
    const Run theCopy = AppendRun(anEnd, aFields->mWhole);
    const char* theField = theCopy.mData;
    for (int i = 0; i < aFields->mCount && i < kField_Additional; ++i)
    {
        aFields->mField[i].mData = theField;
        theField += aFields->mField[i].mLength + 1;
    }
}

// As WriteWhole, without the blanks.
static void WriteFields(char** anEnd, Fields* aFields, bool afHasBlanks)
{
    for (int i = 0; i < aFields->mCount; ++i)
    {
        if (i > 0) { *(*anEnd)++ = ':'; }
        if (i == kField_Additional && afHasBlanks) { AppendParameters(anEnd, aFields->mField[i]); }
        else { aFields->mField[i] = AppendRun(anEnd, aFields->mField[i]); }
    }
}

static void WriteText(zoDLNAProtocolInfo_t* anInfo, char** anEnd, Fields* aFields, bool afHasBlanks)
{
    anInfo->mText = *anEnd;
    if (aFields->mWhole.mData) { WriteWhole(anEnd, aFields); }
    else { WriteFields(anEnd, aFields, afHasBlanks); }
    anInfo->mTextLength = static_cast<size_t>(*anEnd - anInfo->mText);
    *(*anEnd)++ = '\0';
}

static void ReadMimeType(zoDLNAProtocolInfo_t* anInfo, Run* aParameters, Run aField, bool afHasParameters)
{
    anInfo->mMimeType = aField;
    anInfo->mMimeParameters = aParameters;
    if (!afHasParameters) { return; }
    zoDLNARun_NextPart(&aField, ';', &anInfo->mMimeType);
    Run thePart;
    while (zoDLNARun_NextPart(&aField, ';', &thePart))
    {
        if (thePart.mLength > 0) { aParameters[anInfo->mMimeParameterCount++] = thePart; }
    }
    std::sort(aParameters, aParameters + anInfo->mMimeParameterCount,
              [](Run aLeft, Run aRight) { return zoDLNARun_Compare(aLeft, aRight) < 0; });
}

static void WriteProfile(zoDLNAProtocolInfo_t* anInfo, char** anEnd, Run aProfile)
{
    if (aProfile.mLength == 0) { return; }
    anInfo->mProfile = AppendRun(anEnd, aProfile).mData;
    *(*anEnd)++ = '\0';
    anInfo->mfThumbnail = strcmp(anInfo->mProfile, "JPEG_TN") == 0 || strcmp(anInfo->mProfile, "PNG_TN") == 0;
}

static size_t BoundTextSize(const Fields& aFields, Run aProfile)
{
    size_t theSize = kFieldCount + aProfile.mLength + 1; // separators, two NULs
    for (const Run& theField : aFields.mField)
        theSize += theField.mLength;
    return theSize;
}

static bool IsConverted(const Parameters& aParameters)
{
    return aParameters.mConverted.mLength == 1 && *aParameters.mConverted.mData == '1';
}

// Changes the fields.
static zoDLNAProtocolInfo_t* NewFromFields(Fields* aFields)
{
    const Parameters theParameters = ReadParameters(*aFields);
    const Run theMimeType = aFields->mField[kField_MimeType];
    const bool fHasMimeParameters = memchr(theMimeType.mData, ';', theMimeType.mLength) != nullptr;
    const size_t theMimeParameterBound =
        fHasMimeParameters
            ? static_cast<size_t>(std::count(theMimeType.mData, theMimeType.mData + theMimeType.mLength, ';'))
            : 0;

    const size_t theTextSize = BoundTextSize(*aFields, theParameters.mProfile);
    if (theMimeParameterBound > (SIZE_MAX / 2 - theTextSize - sizeof(zoDLNAProtocolInfo_t)) / sizeof(Run)) { abort(); }
    char* theBlock =
        static_cast<char*>(zoMalloc(sizeof(zoDLNAProtocolInfo_t) + theMimeParameterBound * sizeof(Run) + theTextSize));
    zoDLNAProtocolInfo_t* theInfo = reinterpret_cast<zoDLNAProtocolInfo_t*>(theBlock);
    memset(theInfo, 0, sizeof(*theInfo));
    Run* theMimeParameters = reinterpret_cast<Run*>(theInfo + 1);
    char* theEnd = reinterpret_cast<char*>(theMimeParameters + theMimeParameterBound);

    WriteText(theInfo, &theEnd, aFields, theParameters.mfHasBlanks);
    WriteProfile(theInfo, &theEnd, theParameters.mProfile);
    ReadMimeType(theInfo, theMimeParameters, aFields->mField[kField_MimeType], fHasMimeParameters);
    theInfo->mProtocol = aFields->mField[kField_Protocol];
    theInfo->mNetwork = aFields->mField[kField_Network];
    theInfo->mfConverted = IsConverted(theParameters);
    return theInfo;
}

static Fields FieldsOf(const char* aText, size_t aLength)
{
    Fields theFields;
    SplitFields(&theFields, { aText ? aText : "", aText ? strnlen(aText, aLength) : 0 });
    return theFields;
}

zoDLNAProtocolInfo_t* zoDLNAProtocolInfo_NewFromFields(const zoDLNARun_t* aFields)
{
    Fields theFields = { { aFields[0], aFields[1], aFields[2], aFields[3] }, kFieldCount, false, { nullptr, 0 } };
    return NewFromFields(&theFields);
}

zoDLNAProtocolInfo_t* zoDLNAProtocolInfo_New(const char* aText, size_t aLength, int /*aFlags*/)
{
    Fields theFields = FieldsOf(aText, aLength);
    return NewFromFields(&theFields);
}

void zoDLNAProtocolInfo_Delete(zoDLNAProtocolInfo_t* anInfo) { free(anInfo); }

// ---- Asking ----

int zoDLNARun_IsWildCard(Run aMimeType)
{
    const size_t theLength = aMimeType.mLength;
    if (theLength == 0 || aMimeType.mData[theLength - 1] != '*') { return false; }
    return theLength == 1 || aMimeType.mData[theLength - 2] == '/';
}

uint32 zoDLNAProtocolInfo_HashMimeType(const zoDLNAProtocolInfo_t* anInfo)
{
    return (zoDLNARun_Hash(anInfo->mMimeType) & ~1u) | (zoDLNARun_IsWildCard(anInfo->mMimeType) ? 1u : 0u);
}

uint32 zoDLNAProtocolInfo_HashProfile(const zoDLNAProtocolInfo_t* anInfo)
{
    return anInfo->mProfile ? zoDLNARun_Hash({ anInfo->mProfile, strlen(anInfo->mProfile) }) | 1u : 0;
}

int zoDLNAProtocolInfo_IsNormal(const char* aText, size_t aLength) { return !aText || !HasBlanks({ aText, aLength }); }

int zoDLNAProtocolInfo_MatchText(const char* aText, size_t aLength, const char* aProfile, int aConversionIndicator)
{
    const Parameters theParameters = ReadParameters(FieldsOf(aText, aLength));
    const Run theProfile = theParameters.mProfile;
    const bool fHasProfile = !aProfile || (theProfile.mLength > 0 && theProfile.mLength == strlen(aProfile) &&
                                           memcmp(theProfile.mData, aProfile, theProfile.mLength) == 0);
    return fHasProfile && (aConversionIndicator == -1 || IsConverted(theParameters) == (aConversionIndicator != 0));
}

char* zoDLNAProtocolInfo_GetStr(const zoDLNAProtocolInfo_t* anInfo)
{
    const size_t theLength = anInfo ? anInfo->mTextLength : 0;
    char* theText = static_cast<char*>(zoMalloc(theLength + 1));
    if (anInfo) { memcpy(theText, anInfo->mText, theLength); }
    theText[theLength] = '\0';
    return theText;
}

const char* zoDLNAProtocolInfo_GetProfile(const zoDLNAProtocolInfo_t* anInfo)
{
    return anInfo ? anInfo->mProfile : nullptr;
}

int zoDLNAProtocolInfo_MatchPN(const zoDLNAProtocolInfo_t* anInfo, const char* aProfile)
{
    const char* theProfile = zoDLNAProtocolInfo_GetProfile(anInfo);
    return theProfile && aProfile && strcmp(theProfile, aProfile) == 0;
}

int zoDLNAProtocolInfo_IsThumbnail(const zoDLNAProtocolInfo_t* anInfo) { return anInfo ? anInfo->mfThumbnail : 0; }

int zoDLNAProtocolInfo_GetConversionIndicator(const zoDLNAProtocolInfo_t* anInfo)
{
    return anInfo ? anInfo->mfConverted : 0;
}

void zoDLNAProtocolInfo_SetUserData(zoDLNAProtocolInfo_t* anInfo, int aUserData)
{
    if (anInfo) { anInfo->mUserData = aUserData; }
}

int zoDLNAProtocolInfo_GetUserData(const zoDLNAProtocolInfo_t* anInfo) { return anInfo ? anInfo->mUserData : 0; }
