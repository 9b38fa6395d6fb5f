#pragma once

/* Numbers of fixed width, the same on every device. */

#include <stddef.h>
#include <stdint.h>

typedef uint8_t uint8;
typedef uint16_t uint16;
typedef uint32_t uint32;
typedef uint64_t uint64;
typedef int8_t int8;
typedef int16_t int16;
typedef int32_t int32;
typedef int64_t int64;
typedef uint64_t zouint64_t;
typedef int64_t zoint64_t;

/* A position in a file or a file's length, in bytes. */
typedef int64_t zoFileOffset;
