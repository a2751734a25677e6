// Calls of a component.
#pragma once

namespace qv::components {

// Returns the result, whose place is the last argument of `call`; -2 if the call itself failed.
template <class Component, class Returned, class... Parameters, class... Arguments>
long ResultOf(Component* component, Returned (Component::*call)(Parameters...),
              const Arguments&... arguments) {
  long result = -1;
  return (component->*call)(arguments..., &result) == 0 ? result : -2;
}

}  // namespace qv::components
