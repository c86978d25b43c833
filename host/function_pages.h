// Where each registered function is described in the reference (docs/functions/<page>.md).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelhost {

// The page (file name without folder or extension) that describes the function `name`, ignoring
// case; none for a name the reference does not describe.
std::optional<std::string> functionPage(std::string_view name);

}  // namespace zelhost
