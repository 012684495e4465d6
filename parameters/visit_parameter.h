#pragma once

#include "parameters/scalar_parameters.h"
#include "parameters/vector_parameters.h"

namespace radiashafts {

// Calls the visitor with the parameter as the class that it is of.
template <class Visitor>
void visitParameter(pfParameter& parameter, const Visitor& visitor) {
  const auto visitedAs = [&](auto* whichever) {
    auto* known = dynamic_cast<decltype(whichever)>(&parameter);
    if (known != nullptr) visitor(*known);
    return known != nullptr;
  };
  visitedAs(static_cast<pfParameterPosition*>(nullptr)) ||
      visitedAs(static_cast<pfParameterBool*>(nullptr)) ||
      visitedAs(static_cast<pfParameterInt*>(nullptr)) ||
      visitedAs(static_cast<pfParameterFloat*>(nullptr)) ||
      visitedAs(static_cast<pfParameterRGB*>(nullptr)) ||
      visitedAs(static_cast<pfParameterList*>(nullptr));
}

// One visitor of functions for single classes.
template <class... Functions>
struct ParameterVisitor : Functions... {
  using Functions::operator()...;
};
template <class... Functions>
ParameterVisitor(Functions...) -> ParameterVisitor<Functions...>;

}  // namespace radiashafts
