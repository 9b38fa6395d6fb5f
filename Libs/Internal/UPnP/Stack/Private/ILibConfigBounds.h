#pragma once

/* The rows of a module's table of bounds, and its validator. */

#include <UPnP/Stack/ILibConfigBounds.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The values of the row of aField of aRecord, whose constants begin with aStem. */
#define ILibConfigBounds_Values(aRecord, aField, aStem)                                                                \
    "" #aField, offsetof(aRecord, aField), sizeof(((aRecord*)0)->aField), aStem##_Default, aStem##_Min, aStem##_Max

/** Clamps the numbers of aRecord other than 0 to their bounds, with a warning for each that names it and aRecordName.
 */
void ILibConfigBounds_Apply(const ILibConfigBounds_t* aTable, void* aRecord, const char* aRecordName);

#ifdef __cplusplus
}
#endif
