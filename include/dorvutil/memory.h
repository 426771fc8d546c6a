#pragma once

/// Memory and containers: vectors, lists, hash tables, bit arrays, pools and heaps.
#include "dorvutil/memory/bit_vector.h"
#include "dorvutil/memory/dlmalloc.h"
#include "dorvutil/memory/hash.h"
#include "dorvutil/memory/heap.h"
#include "dorvutil/memory/iterator.h"
#include "dorvutil/memory/list.h"
#include "dorvutil/memory/numbered_list.h"
#include "dorvutil/memory/pool.h"
#include "dorvutil/memory/priority_queue.h"
#include "dorvutil/memory/sorted.h"
#include "dorvutil/memory/sync_list.h"
#include "dorvutil/memory/vector.h"
