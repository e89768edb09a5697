#pragma once
// Assertions, on in every build. XAssert quotes the expression as written; XAssertText quotes
// a given text where the code's expression reads differently.

#include "XInternalError.h"

#define XAssert(expression)                                                                        \
    do                                                                                             \
    {                                                                                              \
        if (!(expression))                                                                         \
            BrindleInternalError(#expression, __FILE__, __LINE__);                                 \
    } while (false)

#define XAssertText(condition, text)                                                               \
    do                                                                                             \
    {                                                                                              \
        if (!(condition))                                                                          \
            BrindleInternalError(text, __FILE__, __LINE__);                                        \
    } while (false)
