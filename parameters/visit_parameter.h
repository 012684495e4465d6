#pragma once

#include "parameters/scalar_parameters.h"
#include "parameters/vector_parameters.h"

namespace radiashafts {

// Calls the visitor with the parameter cast to its dynamic type.
template <class Visitor>
void visitParameter(pfParameter& parameter, const Visitor& visitor) {
  const auto visitAs = [&](auto* typeTag) {
    auto* typed = dynamic_cast<decltype(typeTag)>(&parameter);
    if (typed != nullptr) visitor(*typed);
    return typed != nullptr;
  };
  visitAs(static_cast<pfParameterPosition*>(nullptr)) ||
      visitAs(static_cast<pfParameterBool*>(nullptr)) ||
      visitAs(static_cast<pfParameterInt*>(nullptr)) ||
      visitAs(static_cast<pfParameterFloat*>(nullptr)) ||
      visitAs(static_cast<pfParameterRGB*>(nullptr)) ||
      visitAs(static_cast<pfParameterList*>(nullptr));
}

// Combines functions for single parameter classes into one visitor.
template <class... Functions>
struct ParameterVisitor : Functions... {
  using Functions::operator()...;
};
template <class... Functions>
ParameterVisitor(Functions...) -> ParameterVisitor<Functions...>;

}  // namespace radiashafts
