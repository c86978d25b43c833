// Registered functions that strip HTML tags and rewrite SQL booleans.
#pragma once

#include "sdk/host_types.h"

namespace zel::adapters {

REALstring RemoveHTMLTagsZEL(REALstring text) noexcept;
REALstring RemoveHTMLTagsWithZEL(REALstring text, REALstring replacement) noexcept;
REALstring SQLReplaceBooleanZEL(REALstring sql) noexcept;

}  // namespace zel::adapters
