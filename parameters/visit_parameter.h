#pragma once

#include <type_traits>

#include "parameters/scalar_parameters.h"
#include "parameters/vector_parameters.h"

namespace radiashafts {

// Calls the visitor with the parameter cast to its dynamic type, constant if the parameter is.
template <class Parameter, class Visitor>
void visitParameter(Parameter& parameter, const Visitor& visitor) {
  const auto visitAs = [&]<class Typed>(std::type_identity<Typed>) {
    using Pointer = std::conditional_t<std::is_const_v<Parameter>, const Typed*, Typed*>;
    const auto typed = dynamic_cast<Pointer>(&parameter);
    if (typed != nullptr) visitor(*typed);
    return typed != nullptr;
  };
  visitAs(std::type_identity<pfParameterPosition>{}) ||
      visitAs(std::type_identity<pfParameterBool>{}) ||
      visitAs(std::type_identity<pfParameterInt>{}) ||
      visitAs(std::type_identity<pfParameterFloat>{}) ||
      visitAs(std::type_identity<pfParameterRGB>{}) ||
      visitAs(std::type_identity<pfParameterList>{});
}

// Combines functions for single parameter classes into one visitor.
template <class... Functions>
struct ParameterVisitor : Functions... {
  using Functions::operator()...;
};
template <class... Functions>
ParameterVisitor(Functions...) -> ParameterVisitor<Functions...>;

}  // namespace radiashafts
