#pragma once

/// Text: the string classes, encodings, comparison and case of names.
#include "dorvutil/text/basic_string.h"
#include "dorvutil/text/chars.h"
#include "dorvutil/text/compare.h"
#include "dorvutil/text/const_string.h"
#include "dorvutil/text/encoding.h"
#include "dorvutil/text/name_casing.h"
#include "dorvutil/text/sanitize.h"
#include "dorvutil/text/special_chars.h"
#include "dorvutil/text/string.h"
#include "dorvutil/text/string_allocator.h"
#include "dorvutil/text/string_guts.h"
#include "dorvutil/text/string_hash.h"
#include "dorvutil/text/tokenize.h"
#include "dorvutil/text/utf8.h"
