#pragma once

/* libzo.so: what carries this mark is visible outside the library; everything else is built hidden. */
#define ZO_API __attribute__((visibility("default")))
