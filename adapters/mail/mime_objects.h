#pragma once

#include <gmime/gmime.h>

#include <string_view>

namespace kalvo::mail {

// An object of the library that reads MIME, by its own type.
template <typename T>
class Ref {
 public:
  explicit Ref(T* object) : object_(object) {}
  ~Ref() {
    if (object_) g_object_unref(object_);
  }
  Ref(const Ref&) = delete;
  Ref& operator=(const Ref&) = delete;
  T* get() const { return object_; }

 private:
  T* object_;
};

inline std::string_view Text(const char* text) { return text ? std::string_view(text) : std::string_view(); }

}  // namespace kalvo::mail
