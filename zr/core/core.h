/// \file
/// Foundation: allocation and reference-counted blocks, the root classes of heap objects,
/// the exceptions, element-type traits, the flat byte form, integer logarithm and random
/// numbers.
#pragma once

#include "zr/core/exceptions.h"
#include "zr/core/export.h"
#include "zr/core/memory.h"
#include "zr/core/numbers.h"
#include "zr/core/serialize.h"
#include "zr/core/traits.h"
#include "zr/core/using_new.h"
#include "zr/core/version.h"
