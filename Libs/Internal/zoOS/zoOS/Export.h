#pragma once

/* libzoOS.so: what carries this mark is visible outside the library; everything else is built hidden. */
#define ZOOS_API __attribute__((visibility("default")))
