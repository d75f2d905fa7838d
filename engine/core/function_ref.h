#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace tarn::details {

template <typename Signature>
class FunctionRef;

/// A callable by reference: two pointers, no allocation. The callable must outlive the call it is passed to.
template <typename Result, typename... Arguments>
class FunctionRef<Result(Arguments...)> {
public:
    template <typename Callable>
    requires(!std::is_same_v<std::remove_cvref_t<Callable>, FunctionRef>)
        FunctionRef(Callable&& callable)  // NOLINT(bugprone-forwarding-reference-overload): excluded above
        : object_(const_cast<void*>(static_cast<const void*>(std::addressof(callable)))),
          call_([](void* object, Arguments... arguments) -> Result {
              return (*static_cast<std::add_pointer_t<Callable>>(object))(
                  std::forward<Arguments>(arguments)...);
          }) {}

    Result operator()(Arguments... arguments) const {
        return call_(object_, std::forward<Arguments>(arguments)...);
    }

private:
    void* object_;
    Result (*call_)(void*, Arguments...);
};

}  // namespace tarn::details
