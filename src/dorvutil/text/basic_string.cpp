#include "dorvutil/text/basic_string.h"

#include "dorvutil/text/string_case_inl.h"
#include "dorvutil/text/string_core_inl.h"
#include "dorvutil/text/string_edit_inl.h"
#include "dorvutil/text/string_file_inl.h"
#include "dorvutil/text/string_numbers_inl.h"
#include "dorvutil/text/string_pieces_inl.h"
#include "dorvutil/text/string_search_inl.h"

namespace dorvutil {

template class TOrvString<char>;
template class TOrvString<char16_t>;

}  // namespace dorvutil
