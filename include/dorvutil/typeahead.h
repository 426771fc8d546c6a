#pragma once

/// Completions offered while the user types.
#include "dorvutil/typeahead/handle.h"
#include "dorvutil/typeahead/match_quality.h"
#include "dorvutil/typeahead/params.h"
#include "dorvutil/typeahead/result.h"
#include "dorvutil/typeahead/shared_guts.h"
#include "dorvutil/typeahead/source.h"
#include "dorvutil/typeahead/source_adder.h"
