// Whole files as bytes, for zelhost's commands.
#pragma once

#include <string>

namespace zelhost {

// Throws std::invalid_argument when the file cannot be read.
std::string fileBytes(const std::string& file);

}  // namespace zelhost
