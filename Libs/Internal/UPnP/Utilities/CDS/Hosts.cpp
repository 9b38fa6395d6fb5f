#include <UPnP/Utilities/CDS/Hosts.h>

#include <zoOS/zoSocket.h>
#include <zoltTools/zoURI.h>

namespace CDS
{

// The first three, two and one octets.
static const uint32 sIPAddressMask[] = { 0xFFFFFF00, 0xFFFF0000, 0xFF000000 };

uint32 FindHostAddress(std::string_view anURI) { return zoURI_S_GetHostIP(anURI.data(), anURI.size()); }

std::string_view BeginningWithHost(std::string_view anURI)
{
    size_t theLength = 0;
    for (int i = 0; i < 3; ++i)
    {
        const size_t theSlash = anURI.find('/', theLength);
        if (theSlash == anURI.npos) { return {}; }
        theLength = theSlash + 1;
    }
    return anURI.substr(0, theLength);
}

uint32 GetLocality(uint32 anAddress, uint32 anotherAddress)
{
    const uint32 theDifference = zoSocket_htonl(anAddress) ^ zoSocket_htonl(anotherAddress);
    for (uint32 i = 0; i < 3; ++i)
    {
        if ((theDifference & sIPAddressMask[i]) == 0) { return 3 - i; }
    }
    return 0;
}

} // namespace CDS
