// Whole files as bytes, for tests that compare what a tool wrote.
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace zeltest {

inline std::string fileBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return std::move(bytes).str();
}

}  // namespace zeltest
