// What compilers spell differently, each once.
#pragma once

#ifdef _MSC_VER

/// Before a function: its references may lie at any address, and no check of the debug build objects.
#define KEMBA_ANY_ALIGNMENT
/// Before a hook of the delayed imports, which that compiler's own header declares constant.
#define KEMBA_DELAY_HOOK const

#else

#define KEMBA_ANY_ALIGNMENT __attribute__((no_sanitize("alignment")))
#define KEMBA_DELAY_HOOK

#endif
