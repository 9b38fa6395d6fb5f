#include "JSON.h"

#include "UTF8.h"

#include <Shared/ASCII.h>
#include <rapidjson/prettywriter.h>

static const unsigned kIndent = 2;

namespace
{

// What RapidJSON writes to.
struct Target
{
    typedef char Ch;

    void Put(char aCharacter) { mText += aCharacter; }
    void Flush() {}

    std::string& mText;
};

} // namespace

// The one that is used. They have no common base with functions that can be told apart when the program runs.
struct JSONWriter::Writers
{
    explicit Writers(std::string& aTarget) : mTarget{ aTarget }, mInLines(mTarget), mIndented(mTarget)
    {
        mIndented.SetIndent(' ', kIndent);
    }

    Target mTarget;
    rapidjson::Writer<Target> mInLines;
    rapidjson::PrettyWriter<Target> mIndented;
};

JSONWriter::JSONWriter(std::string& aTarget, bool afLines)
    : mTarget(aTarget), mfLines(afLines), mWriters(std::make_unique<Writers>(aTarget))
{}

JSONWriter::~JSONWriter() = default;

template <typename Call>
void JSONWriter::Write(Call aCall)
{
    if (mfLines) { aCall(mWriters->mInLines); }
    else { aCall(mWriters->mIndented); }
}

static size_t ValidLength(std::string_view aText)
{
    size_t theLength = 0;
    while (theLength < aText.size())
    {
        const size_t theCharacter = CharacterLength(aText.substr(theLength));
        if (theCharacter == 0) { break; }
        theLength += theCharacter;
    }
    return theLength;
}

static std::string WithoutInvalidBytes(std::string_view aText)
{
    std::string theText;
    while (!aText.empty())
    {
        const size_t theLength = ValidLength(aText);
        theText += aText.substr(0, theLength);
        aText.remove_prefix(theLength);
        if (aText.empty()) { break; }
        theText += "\xEF\xBF\xBD";
        aText.remove_prefix(1);
    }
    return theText;
}

template <typename Writer>
static void WriteText(Writer& aWriter, std::string_view aText)
{
    aWriter.String(aText.data() ? aText.data() : "", static_cast<rapidjson::SizeType>(aText.size()));
}

void JSONWriter::Value(const JSONValue& aValue)
{
    Write(
        [&aValue](auto& aWriter)
        {
        if (const bool* fValue = std::get_if<bool>(&aValue)) { aWriter.Bool(*fValue); }
        else if (const uint64* theNumber = std::get_if<uint64>(&aValue)) { aWriter.Uint64(*theNumber); }
        else if (const std::string_view* theText = std::get_if<std::string_view>(&aValue))
        {
            if (ValidLength(*theText) == theText->size()) { WriteText(aWriter, *theText); }
            else { WriteText(aWriter, WithoutInvalidBytes(*theText)); }
        }
        else { aWriter.Null(); }
    });
}

// Capital letters at the start become small ones; a word after a blank or a dash begins with a capital letter.
std::string JSONKey(std::string_view aName)
{
    std::string theKey;
    bool fAtStart = true, fIsNewWord = false;
    for (const char theCharacter : aName)
    {
        const char theSmall = Shared::ToLower(theCharacter);
        fAtStart = fAtStart && theSmall != theCharacter;
        const bool fDivides = theCharacter == ' ' || theCharacter == '-';
        if (!fDivides)
        {
            const bool fIsSmallLetter = theCharacter >= 'a' && theCharacter <= 'z';
            theKey += fAtStart                       ? theSmall
                      : fIsNewWord && fIsSmallLetter ? static_cast<char>(theCharacter - 'a' + 'A')
                                                     : theCharacter;
        }
        fIsNewWord = fDivides;
    }
    return theKey;
}

void JSONWriter::Name(std::string_view aName) { Key(JSONKey(aName)); }

void JSONWriter::Key(std::string_view aKey)
{
    if (mDepth == 0) { BeginObject(); }
    Write([aKey](auto& aWriter) { aWriter.Key(aKey.data(), static_cast<rapidjson::SizeType>(aKey.size())); });
}

void JSONWriter::BeginObject()
{
    Write([](auto& aWriter) { aWriter.StartObject(); });
    ++mDepth;
}

void JSONWriter::EndObject()
{
    Write([](auto& aWriter) { aWriter.EndObject(); });
    if (--mDepth > 0) { return; }
    mTarget += '\n';
    Write([this](auto& aWriter) { aWriter.Reset(mWriters->mTarget); });
}

void JSONWriter::BeginArray()
{
    Write([](auto& aWriter) { aWriter.StartArray(); });
    ++mDepth;
}

void JSONWriter::EndArray()
{
    Write([](auto& aWriter) { aWriter.EndArray(); });
    --mDepth;
}
