// The short tour that `zelhost demo` gives of the plug-in's functions.
#pragma once

#include <ostream>

namespace zelhost {

// Runs every tour stop whose function is registered; returns how many ran.
int runDemoTour(std::ostream& out);

}  // namespace zelhost
