#pragma once

#include <type_traits>

#include "parameters/scalar_parameters.h"
#include "parameters/vector_parameters.h"

namespace radiashafts {

// Calls the visitor with the parameter cast to its dynamic type, constant if the parameter is.
template <class Parameter, class Visitor>
void visitParameter(Parameter& parameter, const Visitor& visitor) {
  const auto visitAs = [&](auto* typeTag) {
    using Typed = std::remove_pointer_t<decltype(typeTag)>;
    using Pointer = std::conditional_t<std::is_const_v<Parameter>, const Typed*, Typed*>;
    const auto typed = dynamic_cast<Pointer>(&parameter);
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
