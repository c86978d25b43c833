// One row per registered function, overload and input: how to call it, and what it documents for
// an allocation that fails inside the plug-in.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "oom/oom_walk.h"

namespace zeltest::oom {

// Besides finishing normally (a failure it recovers from), what a function may do when one of its
// allocations fails.
struct OnFailure {
  bool quiet = false;                 // the empty result, nothing raised
  std::vector<std::string> messages;  // OutOfMemoryException with one of these (regular
                                      // expressions) and the empty result
  bool emptyText = false;             // a text view that cannot be made reads as empty text
  bool anyResultWhenRaised = false;   // the result is a host object changed in place
  bool textDropped = false;  // a text that cannot be read is missing from the normal result
};

struct Row {
  std::string name;
  std::function<Outcome()> call;
  // Readies the inputs that need the plug-in itself, before the walk.
  std::function<void()> prepare = [] {};
  // The same call with one text argument empty, for each text argument.
  std::vector<std::function<Outcome()>> emptyTextCalls;
  OnFailure onFailure;
  // A message that some failed allocation of the walk must raise, for paths that only one
  // allocation reaches; empty for none.
  std::string reaches = {};
};

void PrintTo(const Row& row, std::ostream* out);

std::vector<Row> allRows();
// The rows of one text input (by its label), and the short rows of every other input.
std::vector<Row> rowsWithInput(const std::string& label);

// Empty when `failed` is the normal outcome or one that `onFailure` documents; else what is wrong.
std::string judge(const OnFailure& onFailure, const Outcome& failed, const Outcome& normal,
                  const std::vector<Outcome>& emptyText);

}  // namespace zeltest::oom
