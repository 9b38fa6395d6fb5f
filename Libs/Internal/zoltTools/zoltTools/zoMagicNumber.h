#pragma once

/* Records that live long carry a number in _mMagicNumber by which a pointer to one is told from a pointer to something
 * else, or to one that is gone. It is set when the record is made, checked on entry, and cleared at the end. */

#include <zoltTools/zoAssert.h>

/* True if aRecord, a pointer, is a living record of the kind that aMagicNumber stands for; an assertion, whose text
 * holds the number itself. */
#define zoAssertMagicNumber(aRecord, aMagicNumber)                                                                     \
    zoAssert(((aRecord) != NULL) && ((aRecord)->_mMagicNumber == (aMagicNumber)))
