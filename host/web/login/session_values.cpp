#include "host/web/login/session_values.h"

#include <cstdint>
#include <cstring>

#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"

namespace kalvo::web::login {
namespace {

// The letter of a type in the packed form.
enum class Tag : char { Null = 'n', Boolean = 'b', Int32 = 'i', Int64 = 'l', Double = 'd', Date = 't', Text = 's' };

template <typename T>
void AppendPlain(std::string& out, const T& value) {
  char bytes[sizeof value];
  std::memcpy(bytes, &value, sizeof value);
  out.append(bytes, sizeof value);
}

void AppendSized(std::string& out, std::string_view text) {
  AppendPlain(out, static_cast<std::uint32_t>(text.size()));
  out += text;
}

struct Pack {
  std::string& out;

  void operator()(const Empty&) const { throw TypeMismatch(); }
  void operator()(const Null&) const { Put(Tag::Null); }
  void operator()(bool truth) const { Put(Tag::Boolean), AppendPlain(out, truth); }
  void operator()(std::int32_t number) const { Put(Tag::Int32), AppendPlain(out, number); }
  void operator()(std::int64_t number) const { Put(Tag::Int64), AppendPlain(out, number); }
  void operator()(double number) const { Put(Tag::Double), AppendPlain(out, number); }
  void operator()(const Date& date) const { Put(Tag::Date), AppendPlain(out, date.serial); }
  void operator()(const std::string& text) const { Put(Tag::Text), AppendSized(out, text); }
  void operator()(const Bytes&) const { throw TypeMismatch(); }
  void operator()(const std::shared_ptr<Object>&) const { throw TypeMismatch(); }

 private:
  void Put(Tag tag) const { out += static_cast<char>(tag); }
};

// Reads packed bytes from left to right; nothing once they end early.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  bool AtEnd() const { return bytes_.empty(); }

  template <typename T>
  std::optional<T> Plain() {
    if (bytes_.size() < sizeof(T)) return std::nullopt;
    T value;
    std::memcpy(&value, bytes_.data(), sizeof value);
    bytes_.remove_prefix(sizeof value);
    return value;
  }

  std::optional<std::string> Sized() {
    const auto size = Plain<std::uint32_t>();
    if (!size || *size > bytes_.size()) return std::nullopt;
    std::string text(bytes_.substr(0, *size));
    bytes_.remove_prefix(*size);
    return text;
  }

  std::optional<Value> Any() {
    const auto tag = Plain<char>();
    if (!tag) return std::nullopt;
    switch (static_cast<Tag>(*tag)) {
      case Tag::Null: return Value(Null{});
      case Tag::Boolean:
        if (const auto byte = Plain<char>()) return Value(*byte != 0);
        return std::nullopt;
      case Tag::Int32: return AsValue(Plain<std::int32_t>());
      case Tag::Int64: return AsValue(Plain<std::int64_t>());
      case Tag::Double: return AsValue(Plain<double>());
      case Tag::Date:
        if (const auto serial = Plain<double>()) return Value(Date{*serial});
        return std::nullopt;
      case Tag::Text: return AsValue(Sized());
    }
    return std::nullopt;
  }

 private:
  template <typename T>
  static std::optional<Value> AsValue(std::optional<T> value) {
    if (!value) return std::nullopt;
    return Value(std::move(*value));
  }

  std::string_view bytes_;
};

Error TooMuch(std::string_view what) {
  return Error(codes::kFailed, Built([&](std::string& out) { Append(out, "The session cannot hold ", what, "."); }));
}

}  // namespace

Value SessionValues::Get(std::string_view name) const {
  const auto found = values_.find(ToLower(name));
  return found == values_.end() ? Value() : found->second;
}

void SessionValues::Set(std::string_view name, const Value& value) {
  const std::string key = ToLower(name);
  if (IsEmpty(value)) {
    values_.erase(key);
    return;
  }
  if (key.size() > kLongestName) throw TooMuch("a value whose name has more than 256 bytes");
  SessionValues fresh(*this);
  fresh.values_[key] = value;
  if (fresh.values_.size() > kMostValues) throw TooMuch("more than 256 values");
  if (fresh.Packed().size() > kLargestSession) throw TooMuch("more than 64 KiB");
  values_ = std::move(fresh.values_);
}

std::vector<std::string> SessionValues::Names() const {
  std::vector<std::string> names;
  for (const auto& [name, value] : values_) names.push_back(name);
  return names;
}

std::string SessionValues::Packed() const {
  std::string out;
  for (const auto& [name, value] : values_) {
    AppendSized(out, name);
    std::visit(Pack{out}, value);
  }
  return out;
}

std::optional<SessionValues> SessionValues::Unpacked(std::string_view bytes) {
  if (bytes.size() > kLargestSession) return std::nullopt;
  SessionValues values;
  for (Reader reader(bytes); !reader.AtEnd();) {
    auto name = reader.Sized();
    if (!name || name->size() > kLongestName || values.values_.size() == kMostValues) return std::nullopt;
    auto value = reader.Any();
    if (!value) return std::nullopt;
    values.values_.insert_or_assign(std::move(*name), std::move(*value));
  }
  return values;
}

}  // namespace kalvo::web::login
