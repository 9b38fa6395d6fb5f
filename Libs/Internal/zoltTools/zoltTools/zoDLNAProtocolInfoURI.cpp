// What a URI's text alone tells of a resource.

#include <zoltTools/zoDLNAProtocolInfo.h>

#include <Shared/ASCII.h>
#include <algorithm>
#include <iterator>
#include <string.h>
#include <string_view>
#include <zoltTools/Private/zoDLNAProtocolInfo.h>

namespace
{

using std::string_view;

struct MimeTypeOfExtension
{
    const char* mExtension;
    const char* mMimeType;
};

// Sorted by extension.
constexpr MimeTypeOfExtension kMimeTypes[] = {
    { "3g2", "video/3gpp2" },
    { "3gp", "video/3gpp" },
    { "aac", "audio/aac" },
    { "ac3", "audio/ac3" },
    { "adts", "audio/vnd.dlna.adts" },
    { "aif", "audio/aiff" },
    { "aiff", "audio/aiff" },
    { "amr", "audio/amr" },
    { "ape", "audio/x-ape" },
    { "asf", "video/x-ms-asf" },
    { "ass", "text/x-ssa" },
    { "asx", "video/x-ms-asf" },
    { "avi", "video/x-msvideo" },
    { "bmp", "image/bmp" },
    { "divx", "video/x-msvideo" },
    { "dsf", "audio/x-dsf" },
    { "dts", "audio/vnd.dts" },
    { "flac", "audio/flac" },
    { "flv", "video/x-flv" },
    { "gif", "image/gif" },
    { "heic", "image/heic" },
    { "jpe", "image/jpeg" },
    { "jpeg", "image/jpeg" },
    { "jpg", "image/jpeg" },
    { "l16", "audio/L16" },
    { "lpcm", "audio/L16" },
    { "m2t", "video/mpeg" },
    { "m2ts", "video/mpeg" },
    { "m2v", "video/mpeg" },
    { "m3u", "audio/mpegurl" },
    { "m3u8", "application/vnd.apple.mpegurl" },
    { "m4a", "audio/mp4" },
    { "m4b", "audio/mp4" },
    { "m4v", "video/mp4" },
    { "mid", "audio/midi" },
    { "midi", "audio/midi" },
    { "mka", "audio/x-matroska" },
    { "mkv", "video/x-matroska" },
    { "mov", "video/quicktime" },
    { "mp2", "audio/mpeg" },
    { "mp3", "audio/mpeg" },
    { "mp4", "video/mp4" },
    { "mpa", "audio/mpeg" },
    { "mpc", "audio/x-musepack" },
    { "mpd", "application/dash+xml" },
    { "mpe", "video/mpeg" },
    { "mpeg", "video/mpeg" },
    { "mpg", "video/mpeg" },
    { "mts", "video/mpeg" },
    { "oga", "audio/ogg" },
    { "ogg", "audio/ogg" },
    { "ogv", "video/ogg" },
    { "opus", "audio/ogg" },
    { "pcm", "audio/L16" },
    { "pls", "audio/x-scpls" },
    { "png", "image/png" },
    { "qt", "video/quicktime" },
    { "smi", "application/smil" },
    { "srt", "text/srt" },
    { "ssa", "text/x-ssa" },
    { "sub", "text/x-microdvd" },
    { "svg", "image/svg+xml" },
    { "tif", "image/tiff" },
    { "tiff", "image/tiff" },
    { "ts", "video/mpeg" },
    { "ttml", "application/ttml+xml" },
    { "tts", "video/vnd.dlna.mpeg-tts" },
    { "vob", "video/mpeg" },
    { "vtt", "text/vtt" },
    { "wav", "audio/wav" },
    { "webm", "video/webm" },
    { "webp", "image/webp" },
    { "wma", "audio/x-ms-wma" },
    { "wmv", "video/x-ms-wmv" },
    { "wpl", "application/vnd.ms-wpl" },
    { "wv", "audio/x-wavpack" },
    { "xspf", "application/xspf+xml" },
};

constexpr bool IsSorted()
{
    for (size_t i = 1; i < std::size(kMimeTypes); ++i)
    {
        const char* theLeft = kMimeTypes[i - 1].mExtension;
        const char* theRight = kMimeTypes[i].mExtension;
        for (; *theLeft != '\0' && *theLeft == *theRight; ++theLeft)
            ++theRight;
        if (*theLeft >= *theRight) { return false; }
    }
    return true;
}
static_assert(IsSorted(), "look-ups are binary searches");

} // namespace

// The scheme without its ":", empty when the text has none.
static string_view SchemeOf(const char* aURI)
{
    size_t theLength = 0;
    for (; aURI[theLength] != '\0'; ++theLength)
    {
        if (Shared::IsLetter(aURI[theLength])) { continue; }
        if (theLength == 0 || !(Shared::IsDigit(aURI[theLength]) || strchr("+-.", aURI[theLength]))) { break; }
    }
    return { aURI, aURI[theLength] == ':' ? theLength : 0 };
}

static string_view ProtocolOf(string_view aScheme)
{
    if (aScheme.empty()) { return string_view("*"); }
    if (Shared::EqualsIgnoringCase(aScheme, string_view("http")) ||
        Shared::EqualsIgnoringCase(aScheme, string_view("https")))
    {
        return string_view("http-get");
    }
    if (Shared::EqualsIgnoringCase(aScheme, string_view("rtsp"))) { return string_view("rtsp-rtp-udp"); }
    return aScheme;
}

// What follows the last "." of the last segment of the path; empty without one.
static string_view ExtensionOf(const char* aHierarchy)
{
    const char* thePath = aHierarchy;
    if (thePath[0] == '/' && thePath[1] == '/') { thePath += 2 + strcspn(thePath + 2, "/?#"); }
    const char* theEnd = thePath + strcspn(thePath, "?#");
    for (const char* theBegin = theEnd; theBegin > thePath && theBegin[-1] != '/'; --theBegin)
    {
        if (theBegin[-1] == '.') { return { theBegin, static_cast<size_t>(theEnd - theBegin) }; }
    }
    return {};
}

static const char* MimeTypeOf(string_view anExtension)
{
    const MimeTypeOfExtension* theEnd = std::end(kMimeTypes);
    const MimeTypeOfExtension* theFound = std::lower_bound(std::begin(kMimeTypes), theEnd, anExtension,
                                                           [](const MimeTypeOfExtension& aLeft, string_view aRight) {
        return Shared::CompareIgnoringCase(string_view(aLeft.mExtension), aRight) < 0;
    });
    const bool fIsKnown =
        theFound != theEnd && Shared::EqualsIgnoringCase(string_view(theFound->mExtension), anExtension);
    return fIsKnown ? theFound->mMimeType : "*";
}

zoDLNAProtocolInfo_t* zoDLNAProtocolInfo_NewFromURI(const char* aURI)
{
    const char* theURI = aURI ? aURI : "";
    const string_view theScheme = SchemeOf(theURI);
    const char* theHierarchy = !theScheme.empty() ? theURI + theScheme.size() + 1 : theURI;
    const string_view theMimeType = string_view(MimeTypeOf(ExtensionOf(theHierarchy)));
    const string_view theFields[] = { ProtocolOf(theScheme), string_view("*"), theMimeType, string_view("*") };
    return ProtocolInfo::NewFromFields(theFields);
}
