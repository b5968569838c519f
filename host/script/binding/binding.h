#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "host/script/binding/arguments.h"

namespace kalvo::host {

inline constexpr std::size_t kMaxParameters = 16;

enum class MemberKind { Method, Property };

// One operation or property of a class as scripts see it.
struct Member {
  MemberKind kind = MemberKind::Method;
  std::string_view name;
  std::array<Parameter, kMaxParameters> parameters{};
  std::size_t parameterCount = 0;
  std::string_view says;               // for the reference: what it needs, does, answers and fails with
  void (*call)(CallFrame&) = nullptr;  // runs the operation or reads the property; pushes one value
  void (*set)(CallFrame&) = nullptr;   // writes the property; null for one that is only read

  std::span<const Parameter> Parameters() const { return {parameters.data(), parameterCount}; }
};

// The types of an operation: a member function, or a function that takes the object first.
template <typename F>
struct Operation;
template <typename R, typename C, typename... A>
struct Operation<R (C::*)(A...)> {
  using Class = C;
  using Result = R;
  using Arguments = std::tuple<Argument<A>...>;
  static constexpr std::size_t kCount = sizeof...(A);
};
template <typename R, typename C, typename... A>
struct Operation<R (C::*)(A...) const> : Operation<R (C::*)(A...)> {};
template <typename R, typename C, typename... A>
struct Operation<R (*)(C&, A...)> : Operation<R (C::*)(A...)> {};

// Converts the arguments in their order, runs the operation and pushes what it answers. What it changed is written
// back also when it fails.
template <auto F>
void RunOperation(CallFrame& frame) {
  using Types = Operation<decltype(F)>;
  auto& self = SelfOf<typename Types::Class>(frame);
  [&]<std::size_t... I>(std::index_sequence<I...>) {
    typename Types::Arguments arguments{ArgumentSource{frame, I}...};
    frame.reading = CallFrame::kNone;
    const auto writeBack = [&] { (std::get<I>(arguments).WriteBack(frame), ...); };
    const auto invoke = [&]() -> decltype(auto) {
      if constexpr (std::is_member_function_pointer_v<decltype(F)>) {
        return (self.*F)(std::get<I>(arguments).Get()...);
      } else {
        return F(self, std::get<I>(arguments).Get()...);
      }
    };
    try {
      if constexpr (std::is_void_v<typename Types::Result>) {
        invoke();
        duk_push_undefined(frame.Context());
      } else {
        PushResult(frame.engine, invoke());
      }
    } catch (const Error&) {
      writeBack();
      throw;
    }
    writeBack();
  }
  (std::make_index_sequence<Types::kCount>());
}

// A row that says nothing does not compile.
constexpr std::string_view Said(std::string_view says) {
  if (says.empty() || !says.ends_with('.')) throw "each operation has a sentence";
  return says;
}

template <auto F, std::size_t N>
consteval Member Method(std::string_view name, const Parameter (&parameters)[N], std::string_view says) {
  static_assert(Operation<decltype(F)>::kCount == N, "each parameter of an operation has one name");
  static_assert(N <= kMaxParameters);
  Member member{MemberKind::Method, name, {}, N, Said(says), RunOperation<F>, nullptr};
  for (std::size_t i = 0; i < N; ++i) member.parameters[i] = parameters[i];
  return member;
}

template <auto F>
consteval Member Method(std::string_view name, std::string_view says) {
  static_assert(Operation<decltype(F)>::kCount == 0, "each parameter of an operation has one name");
  return {MemberKind::Method, name, {}, 0, Said(says), RunOperation<F>, nullptr};
}

template <auto Get>
consteval Member Property(std::string_view name, std::string_view says) {
  static_assert(Operation<decltype(Get)>::kCount == 0);
  return {MemberKind::Property, name, {}, 0, Said(says), RunOperation<Get>, nullptr};
}

template <auto Get, auto Set>
consteval Member Property(std::string_view name, std::string_view says) {
  static_assert(Operation<decltype(Get)>::kCount == 0 && Operation<decltype(Set)>::kCount == 1);
  return {MemberKind::Property, name, {}, 0, Said(says), RunOperation<Get>, RunOperation<Set>};
}

}  // namespace kalvo::host
