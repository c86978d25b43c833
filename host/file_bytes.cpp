#include "file_bytes.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace zelhost {

std::string fileBytes(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::invalid_argument("cannot read " + file);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return std::move(bytes).str();
}

}  // namespace zelhost
