/// \file
/// Text: the byte string with its tokenizer, and the exceptions that carry strings.
#pragma once

#include "zr/core/core.h"
#include "zr/text/errors.h"
#include "zr/text/string.h"
