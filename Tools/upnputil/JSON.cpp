#include "JSON.h"

#include "UTF8.h"

#include <Shared/ASCII.h>
#include <limits>
#include <utility>

static const size_t kNone = std::numeric_limits<size_t>::max();

namespace
{

// The first step of a name: of "resource 1 uri" it is "resource" and 1, and "uri" remains. A name without a number is
// one word.
struct Step
{
    std::string_view mWord;
    size_t mIndex = kNone;
    std::string_view mRest;
};

} // namespace

// The number that a text begins with, up to a blank or its end, and its length; no length without one.
static std::pair<size_t, size_t> ReadIndex(std::string_view aText)
{
    const size_t kMostDigits = 9;
    size_t theIndex = 0;
    size_t theLength = 0;
    for (; theLength < aText.size() && theLength <= kMostDigits && Shared::IsDigit(aText[theLength]); ++theLength)
        theIndex = theIndex * 10 + static_cast<size_t>(aText[theLength] - '0');
    const bool fIsNumber =
        theLength > 0 && theLength <= kMostDigits && (theLength == aText.size() || aText[theLength] == ' ');
    return { theIndex, fIsNumber ? theLength : 0 };
}

static Step FirstStep(std::string_view aName)
{
    for (size_t theBlank = aName.find(' '); theBlank != aName.npos; theBlank = aName.find(' ', theBlank + 1))
    {
        const auto [theIndex, theLength] = ReadIndex(aName.substr(theBlank + 1));
        if (theBlank == 0 || theLength == 0) { continue; }
        const size_t theEnd = theBlank + 1 + theLength;
        return { aName.substr(0, theBlank), theIndex, theEnd < aName.size() ? aName.substr(theEnd + 1) : "" };
    }
    return { aName, kNone, "" };
}

size_t JSONFacts::NewChild(size_t aParent, Kind aKind, std::string_view aName)
{
    const size_t theNode = mNodes.size();
    mNodes.emplace_back();
    mNodes.back().mKind = aKind;
    mNodes.back().mName = aName;
    mNodes[aParent].mChildren.push_back(theNode);
    return theNode;
}

// The newest members are asked for most.
size_t JSONFacts::Member(size_t anObject, std::string_view aName) const
{
    const std::vector<size_t>& theMembers = mNodes[anObject].mChildren;
    for (size_t i = theMembers.size(); i-- > 0;)
    {
        if (mNodes[theMembers[i]].mName == aName) { return theMembers[i]; }
    }
    return kNone;
}

// Makes the member an array; a text in its place becomes the first element.
size_t JSONFacts::ArrayOf(size_t anObject, std::string_view aName)
{
    const size_t theMember = Member(anObject, aName);
    if (theMember == kNone) { return NewChild(anObject, Kind::Array, aName); }
    if (mNodes[theMember].mKind == Kind::Text)
    {
        std::string theText = std::move(mNodes[theMember].mText);
        mNodes[theMember].mKind = Kind::Array;
        mNodes[theMember].mText.clear();
        const size_t theElement = NewChild(theMember, Kind::Text, "");
        mNodes[theElement].mText = std::move(theText);
    }
    return theMember;
}

// Makes the element an object: a new one in place of a text and past the end.
size_t JSONFacts::ObjectAt(size_t anArray, size_t anIndex)
{
    const std::vector<size_t>& theElements = mNodes[anArray].mChildren;
    const bool fIsObject = anIndex < theElements.size() && mNodes[theElements[anIndex]].mKind == Kind::Object;
    return fIsObject ? theElements[anIndex] : NewChild(anArray, Kind::Object, "");
}

void JSONFacts::AddText(size_t anObject, std::string_view aName, std::string_view aValue)
{
    const bool fIsNew = Member(anObject, aName) == kNone;
    const size_t theNode =
        fIsNew ? NewChild(anObject, Kind::Text, aName) : NewChild(ArrayOf(anObject, aName), Kind::Text, "");
    mNodes[theNode].mText = aValue;
}

void JSONFacts::Add(std::string_view aName, std::string_view aValue)
{
    size_t theObject = 0;
    for (Step theStep = FirstStep(aName); theStep.mIndex != kNone; theStep = FirstStep(theStep.mRest))
    {
        const size_t theArray = ArrayOf(theObject, theStep.mWord);
        if (theStep.mRest.empty())
        {
            mNodes[NewChild(theArray, Kind::Text, "")].mText = aValue;
            return;
        }
        theObject = ObjectAt(theArray, theStep.mIndex);
        aName = theStep.mRest;
    }
    AddText(theObject, aName, aValue);
}

static void AppendString(std::string& aTarget, std::string_view aText)
{
    static const char kDigits[] = "0123456789abcdef";
    aTarget += '"';
    while (!aText.empty())
    {
        const size_t theLength = CharacterLength(aText);
        const unsigned char theFirst = static_cast<unsigned char>(aText[0]);
        if (theLength == 0) { aTarget += "\xEF\xBF\xBD"; }
        else if (theFirst < 0x20 || theFirst == 0x7F)
        {
            (aTarget += "\\u00") += { kDigits[theFirst >> 4], kDigits[theFirst & 15] };
        }
        else
        {
            if (aText[0] == '"' || aText[0] == '\\') { aTarget += '\\'; }
            aTarget += aText.substr(0, theLength);
        }
        aText.remove_prefix(theLength == 0 ? 1 : theLength);
    }
    aTarget += '"';
}

// Writes a text, or what comes before the children of an array or an object.
void JSONFacts::AppendOpening(std::string& aText, size_t aNode) const
{
    switch (mNodes[aNode].mKind)
    {
    case Kind::Text: AppendString(aText, mNodes[aNode].mText); break;
    case Kind::Array: aText += '['; break;
    case Kind::Object: aText += '{'; break;
    }
}

std::string JSONFacts::Text() const
{
    struct Open
    {
        size_t mNode;
        size_t mNextChild;
    };
    std::string theText;
    std::vector<Open> theOpen = { { 0, 0 } };
    AppendOpening(theText, 0);
    while (!theOpen.empty())
    {
        const Node& theNode = mNodes[theOpen.back().mNode];
        const std::string theIndent(theOpen.size() * 2, ' ');
        if (theOpen.back().mNextChild == theNode.mChildren.size())
        {
            theOpen.pop_back();
            if (!theNode.mChildren.empty()) { (theText += '\n') += theIndent.substr(2); }
            theText += theNode.mKind == Kind::Array ? ']' : '}';
            continue;
        }
        theText += theOpen.back().mNextChild == 0 ? "\n" : ",\n";
        theText += theIndent;
        const size_t theChild = theNode.mChildren[theOpen.back().mNextChild++];
        if (theNode.mKind == Kind::Object)
        {
            AppendString(theText, mNodes[theChild].mName);
            theText += ": ";
        }
        AppendOpening(theText, theChild);
        if (mNodes[theChild].mKind != Kind::Text) { theOpen.push_back({ theChild, 0 }); }
    }
    return theText + "\n";
}
