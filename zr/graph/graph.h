/// \file
/// Lists and graphs: intrusive list links, value nodes and a queue, and the
/// node-and-branch graph with its breadth-first wave.
#pragma once

#include "zr/core/core.h"
#include "zr/graph/list.h"
#include "zr/graph/simple_graph.h"
