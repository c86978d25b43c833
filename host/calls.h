// Finding registered members by declaration or name, and their C signatures.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "stand_in_host.h"

namespace zelhost::detail {

// Members that `declarationOrName` names, loose methods first (see findMethod).
std::vector<const RegisteredMember*> membersNamed(std::string_view declarationOrName);

// The C type of a declared type; none for types the host passes in ways we do not model.
std::optional<CType> cTypeOfDeclared(std::string_view normalisedType);

struct CSignature {
  std::vector<std::optional<CType>> parameters;
  std::optional<CType> result;
};
CSignature cSignature(const RegisteredMember& member, Through through);

}  // namespace zelhost::detail
