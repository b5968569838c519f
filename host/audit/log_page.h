#pragma once

#include <filesystem>

#include "host/script/binding/classes/host_objects.h"

namespace kalvo::audit {

// The audit log of a folder, for the pages of administrators.
class LogPage final : public host::AuditLog {
 public:
  explicit LogPage(std::filesystem::path folder) : folder_(std::move(folder)) {}

  std::string Lines(std::string_view event, std::string_view user, std::int32_t skipped, std::int32_t count) override;
  std::string Events() override;

 private:
  std::filesystem::path folder_;
};

}  // namespace kalvo::audit
