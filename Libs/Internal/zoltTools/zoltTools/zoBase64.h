#pragma once

#include <zoOS/zoTypes.h>
#include <zoltTools/Export.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Base64 of RFC 4648, section 4, with padding and without line breaks.
 * @param aText out: a new NUL-terminated text, released with free; NULL on failure.
 * @return the length of the text: 0 for no bytes, and on failure, when memory can't hold the text.
 */
ZOLTTOOLS_API size_t zoBase64_Encode(const void* aBytes, size_t aLength, char** aText);

#ifdef __cplusplus
}
#endif
