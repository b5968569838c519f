#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kalvo::test {

// Makes "cur", "new" and "tmp".
void MakeMaildir(const std::filesystem::path& folder);

// The folder of a Maildir++ tree that a path of names means; the tree itself for the inbox.
std::filesystem::path MaildirFolder(const std::filesystem::path& tree, const std::vector<std::string>& path);

// Writes a message as a delivery does, with its time of arrival.
void Deliver(const std::filesystem::path& folder, const std::string& name, std::string_view text,
             std::int64_t received);

// Loads the fixture of the contract into a store.
void LoadFixture(const std::filesystem::path& store);

}  // namespace kalvo::test
