// The process environment as a user sets it before starting an application; the plug-in reads the
// same C runtime's environment.
#pragma once

#include <cstdlib>

namespace zeltest {

// A null value removes the variable. Windows cannot hold an empty value: there "" removes it too.
inline void setEnvironmentVariable(const char* name, const char* value) {
#if defined(_WIN32)
  _putenv_s(name, value != nullptr ? value : "");
#else
  if (value != nullptr)
    setenv(name, value, 1);
  else
    unsetenv(name);
#endif
}

}  // namespace zeltest
