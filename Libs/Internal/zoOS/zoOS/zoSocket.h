#pragma once

#include <zoOS/Export.h>
#include <zoOS/zoTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A socket, or any other file descriptor. */
typedef int zoSocket;
enum
{
    kzoSocketInvalid = -1
};

/** @return aValue with its bytes in network order (most significant first); its own inverse. */
ZOOS_API uint32 zoSocket_htonl(uint32 aValue);

/**
 * Reads an IPv4 address in dotted-quad form ("192.168.1.20"): four decimal numbers of one to three digits, 0 to 255.
 * @return the address in network byte order; 0 for NULL and for any text that is not a dotted quad.
 */
ZOOS_API uint32 zoSocketGetAddressFromDotForm(const char* aText);

#ifdef __cplusplus
}
#endif
