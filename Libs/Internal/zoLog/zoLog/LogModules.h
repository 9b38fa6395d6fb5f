#pragma once

/* The modules that a message can come from. */
enum
{
    ZOLOG_M_DEFAULT = 0,
    ZOLOG_M_UPNP = 1,
    ZOLOG_M_UPNPGROUP = 147
};
